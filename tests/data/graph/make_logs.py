# Writes the test logs of this folder in the console's log layout, from a
# pump model: python3 make_logs.py (run in this folder).
import math, sys
from decimal import Decimal, ROUND_HALF_UP

def picture(v, decimals, int_zeros):
    d = Decimal(format(v, '.15g')).quantize(Decimal(1).scaleb(-decimals), rounding=ROUND_HALF_UP)
    s = format(abs(d), 'f')
    ip, _, fp = s.partition('.')
    ip = ip.zfill(int_zeros)
    out = ('-' if d < 0 else '') + ip + ('.' + fp if decimals else '')
    return out

def by_size(v):
    if v < 10: return picture(v, 3, 1)
    if v < 100: return picture(v, 2, 2)
    if v < 1000: return picture(v, 1, 3)
    return picture(v, 0, 4)

def general(v):
    s = '%.15g' % v
    return s

def head(out, channel='B'):
    L = out.append
    L(''); L(''); L(' ' * 67 + 'p. 01'); L('')
    L(' ' * 33 + 'MAROVANT 4500-K'); L(' ' * 31 + 'Corvane Systems Inc.'); L('')
    L(' ' * 36 + 'DATA LOG'); L('')
    L(' ' * 9 + 'Start of Test - Date: Nov 3 2026'); L(' ' * 23 + '- Time: 09:15'); L('')
    L(' ' * 9 + 'Infusion Device Information:'); L('')
    L(' ' * 9 + 'Manufacturer: ' + 'Infusa' + '_' * 12 + ' Model: ' + 'LV-200' + '_' * 16); L('')
    L(' ' * 9 + 'Serial No.: ' + '_' * 20 + ' Control No.: ' + '_' * 16); L('')
    L(' ' * 9 + 'Department: ' + '_' * 20 + ' Location: ' + '_' * 19); L('')
    L(' ' * 9 + 'Set Rate(s): ' + '100' + '_' * 10 + ' ml/h  ' + 'VTBI: ' + '_' * 20 + ' ml'); L('')
    L(' ' * 9 + 'Comment(s): ' + '_' * 50); L(''); L('')
    L(' ' * 9 + 'Channel: ' + channel); L('')
    L(' ' * 9 + 'SINGLE RATE TEST'); L('')
    L(' ' * 9 + 'Elapsed   Flow  Avg Flow  Volume  B.Pres')
    L(' ' * 9 + '  Time    (ml/h)  (ml/h)    (ml)  (mmHg)')

def write(path, rows):
    out = []
    head(out)
    line_count, page = 27, 1
    for (secs, flow, avg, vol, pres) in rows:
        line_count += 1
        if line_count > 56:
            page += 1
            out += ['\f', '', ' ' * 67 + 'p. %02d' % page, '',
                    ' ' * 9 + 'Elasped   Flow  Avg Flow  Volume  B.Pres',
                    ' ' * 9 + ' Time    (ml/h)  (ml/h)    (ml)   (mmHg)']
            line_count = 6
        h, m, s = secs // 3600, secs // 60 % 60, secs % 60
        out.append(' ' * 9 + '%02d:%02d:%02d' % (h, m, s) + '  ' + by_size(flow) + '   ' + by_size(avg)
                   + '    ' + by_size(vol) + '     ' + general(pres))
    out += ['', ' ' * 9 + 'END OF DATA', '']
    out.append(' ' * 9 + 'PumpType: ' + 'Volumetric' + '_' * 12 + ' Pump Tolerance(+/- %): ' + '5' + '_' * 5)
    out.append('')
    out.append(' ' * 9 + 'Technician:_____________________ Signature:___________________')
    with open(path, 'wb') as f:
        f.write(('\r\n'.join(out) + '\r\n').encode('ascii'))

def pump(minutes, poll, rate, start_delay=0.0):
    rows = []
    vol = 0.0
    fine = 60  # integration steps per poll
    prev = 0
    def flow_at(t):  # t minutes
        if t < start_delay: return 0.0
        return rate * 0.99 + 6.0 * math.sin(2 * math.pi * t / 7.3) + 2.5 * math.sin(2 * math.pi * t / 1.7 + 1.0)
    for i in range(int(minutes * 60 / poll) + 1):
        secs = i * poll
        if i > 0:
            for k in range(fine):
                t0 = (prev + (secs - prev) * k / fine) / 60
                t1 = (prev + (secs - prev) * (k + 1) / fine) / 60
                vol += (flow_at(t0) + flow_at(t1)) / 2 * (t1 - t0) / 60
        prev = secs
        flow = flow_at(secs / 60)
        avg = 0.0 if secs == 0 else vol / (secs / 3600)
        pres = round(12 + 3 * math.sin(secs / 300.0), 1)
        rows.append((secs, flow, avg, vol, pres))
    return rows


def occlusion(path):
    out = []
    head(out)
    out[-4] = ' ' * 9 + 'OCCLUSION PRESSURE TEST'
    out[-2] = ' ' * 12 + 'Elasped Time       Occlusion Pressure'
    out[-1] = ' ' * 12 + '                     (psi)     (mmHg)'
    for i in range(12):
        out.append(' ' * 16 + '%02d:%02d' % (i // 60, i % 60) + ' ' * 12 + '%05.2f' % (i * 0.5) + ' ' * 6 + '%03d' % (i * 26))
    out += ['', ' ' * 9 + 'END OF DATA', '']
    with open(path, 'wb') as f:
        f.write(('\r\n'.join(out) + '\r\n').encode('ascii'))

if __name__ == '__main__':
    write('single_rate_130min.log', pump(130, 15, 100))
    write('single_rate_45min.log', pump(45, 30, 50))
    write('single_rate_80min.log', pump(80, 30, 25))
    occlusion('occlusion.log')
