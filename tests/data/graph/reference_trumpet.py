# Works out the figures and trumpet tables that tst_trumpet_compute holds as constants,
# from the log reader's and the trumpet's rules, without the console's code:
#   python3 reference_trumpet.py single_rate_130min.log
import math, struct, sys

def f32(x):
    return struct.unpack('<f', struct.pack('<f', x))[0]

def half_even(x):
    return float(round(x))

def read(path):
    text = open(path, 'rb').read().decode('latin-1')
    lines = text.split('\r\n')
    if lines and lines[-1] == '':
        lines.pop()
    count = 0
    for raw in lines:
        t = raw.strip(' ')
        if len(t) >= 6 and t[2] == ':' and t[5] == ':':
            count += 1
    n = count - 1
    time, flow, avg, vol, pres = ([0.0] * (n + 1) for _ in range(5))
    marks = set()
    i = 0
    maxf, minf, maxv, first = 0.0, 100.0, 0.0, True
    for raw in lines:
        if 'END OF DATA' in raw or '\x07' in raw:
            break
        t = raw.strip(' ')
        for m in ('MAROVANT', 'SINGLE RATE TEST', 'Elapsed', 'Time'):
            if t.startswith(m):
                marks.add(m)
        if len(marks) < 4 or not (len(t) >= 6 and t[2] == ':' and t[5] == ':'):
            continue
        rest = t.lstrip(' ') + ' '
        fields = []
        for k in range(5):
            p = rest.find(' ')
            fields.append(rest[:p + 1])
            rest = rest[p:].lstrip(' ')
        f0 = fields[0]
        minutes = float(f0[0:2]) * 60 + float(f0[3:5]) + float(f0[6:8]) / 60
        s = '%.15g' % minutes
        if '.' in s:
            s = s[:s.index('.') + 3]
        time[i] = float(s)
        flow[i], avg[i], vol[i] = (float(x) for x in fields[1:4])
        pres[i] = int(round(float(fields[4])))
        if vol[i] > maxv: maxv = vol[i]
        if flow[i] > maxf: maxf = flow[i]
        if first:
            minf, first = flow[i], False
        elif flow[i] < minf:
            minf = flow[i]
        i += 1
    a = avg[n]
    up, down = maxf - a, a - minf
    if down < up:
        lo, hi = (math.floor(a - up), math.floor(maxf + 1)) if a <= 1 else (math.floor(a - up + 0.5), math.floor(maxf + 0.5))
    else:
        hi, lo = (math.floor(a + down + 1), math.floor(minf)) if a <= 1 else (math.floor(a + down + 0.5), math.floor(minf + 0.5))
    return dict(n=n, time=time, flow=flow, avg=avg, vol=vol, pres=pres, max_flow=maxf, min_flow=minf,
                final_avg_flow=a, avg_flow_whole=int(round(a)), max_volume=float(math.floor(maxv)),
                flow_scale_min=float(lo), flow_scale_max=float(hi), base_rate=float(math.floor(avg[n - 1] + 0.5)))

def interp(x, y0, y1, x0, x1):
    if x1 - x0 == 0:
        return y1
    return (x - x1) * ((y1 - y0) / (x1 - x0)) + y1

def trumpet(log, interval, start, end, base):
    n, avg, vol, time = log['n'], log['avg'], log['vol'], log['time']
    I = interval / 60
    ct = [time[i] if avg[i] == 0 else vol[i] / avg[i] * 60 for i in range(n + 1)]
    k = 1
    if start > 0:
        while ct[k] < start and k < n:
            k += 1
        first = k
    else:
        first = 0
    if end < ct[n]:
        while ct[k] < end and k < n:
            k += 1
        last = k + 1 if k < n - 1 else k
    else:
        last = n
    tv = []
    k, m = first, 0
    while True:
        if m * I > end or k > last:
            break
        t = m * I + start
        if m == 0:
            tv.append(interp(t, vol[k - 1], vol[k], ct[k - 1], ct[k]) if k > 0 else interp(start, vol[0], vol[1], ct[0], ct[1]))
            m = 1
            continue
        if k == 0:
            if t < ct[0]:
                tv.append(interp(t, vol[0], vol[1], ct[0], ct[1])); m += 1
            elif t == ct[0]:
                tv.append(vol[0]); m += 1
            else:
                k += 1
        else:
            if t < ct[k]:
                tv.append(interp(t, vol[k - 1], vol[k], ct[k - 1], ct[k])); m += 1
            elif t == ct[k]:
                tv.append(vol[k]); m += 1
            else:
                k += 1
    span = last - first
    insufficient = (interval == 30 and span < 120) or (interval == 60 and span < 60)
    step = max(1, half_even(1 / (interval / 60)))
    table = []
    for w in (2, 5, 11, 19, 31):
        hi = lo = avg[n]
        j = 0
        while j + w * step < m:
            rate = (tv[int(j + w * step)] - tv[j]) * 60 / w
            if rate > hi:
                hi = rate
            elif rate < lo:
                lo = rate
            j += 1
        if base == 0:
            table.append([f32(w), 0.0, 0.0, 0.0, 0.0])
        else:
            table.append([f32(w), f32((hi - base) / base * 100), f32((lo - base) / base * 100), f32(hi - base), f32(lo - base)])
    avg_rate = avg[n - 1]
    avg_error = (avg_rate - base) / base * 100 if base != 0 else 0.0
    return dict(table=table, avg_rate=avg_rate, avg_error=avg_error, insufficient=insufficient, count=m, first=first, last=last)

if __name__ == '__main__':
    log = read(sys.argv[1])
    for key in ('n', 'max_flow', 'min_flow', 'final_avg_flow', 'avg_flow_whole', 'max_volume', 'flow_scale_min',
                'flow_scale_max', 'base_rate'):
        print(key, repr(log[key]))
    for (interval, start, end, base) in [(60, 60, 120, None), (30, 0, 130, None), (30, 60, 120, None), (60, 0, 130, 100.0)]:
        b = log['base_rate'] if base is None else base
        r = trumpet(log, interval, start, end, b)
        print('interval %d start %d end %d base %r' % (interval, start, end, b))
        print('  avg_rate %r avg_error %r insufficient %r count %d first %d last %d' %
              (r['avg_rate'], r['avg_error'], r['insufficient'], r['count'], r['first'], r['last']))
        for row in r['table']:
            print('   ', ', '.join(repr(v) for v in row))
