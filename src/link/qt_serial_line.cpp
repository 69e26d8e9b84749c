#include "link/qt_serial_line.h"

#include <QStringList>

#include "app/settings/settings_store.h"
#include "common/qt_text.h"

namespace kyt {

QtSerialLine::QtSerialLine(SettingsStore& settings) : settings_(settings) {}

std::string QtSerialLine::device_name(int port) const {
    const std::string fallback = "/dev/ttyS" + std::to_string(port - 1);
    return settings_.get_setting(kApp, "Ports", "comm" + std::to_string(port), fallback);
}

void QtSerialLine::set_settings(std::string_view settings) {
    // "baud,parity,data bits,stop bits", as "9600,N,8,1".
    const QStringList parts = qs(settings).split(',');
    if (parts.size() != 4) throw SerialError("Invalid line settings: " + std::string(settings));
    baud_ = parts[0].toInt();
    const QString p = parts[1].trimmed().toUpper();
    parity_ = p == "E" ? QSerialPort::EvenParity
              : p == "O" ? QSerialPort::OddParity
              : p == "M" ? QSerialPort::MarkParity
              : p == "S" ? QSerialPort::SpaceParity
                         : QSerialPort::NoParity;
    data_bits_ = static_cast<QSerialPort::DataBits>(parts[2].toInt());
    stop_bits_ = parts[3].trimmed() == "2" ? QSerialPort::TwoStop : QSerialPort::OneStop;
    if (port_.isOpen()) {
        port_.setBaudRate(baud_);
        port_.setParity(parity_);
        port_.setDataBits(data_bits_);
        port_.setStopBits(stop_bits_);
    }
}

void QtSerialLine::set_port_open(bool open) {
    if (!open) {
        if (port_.isOpen()) port_.close();
        return;
    }
    if (port_.isOpen()) return;
    const std::string device = device_name(port_number_);
    port_.setPortName(qs(device));
    if (!port_.open(QIODevice::ReadWrite))
        throw SerialError("Comm " + std::to_string(port_number_) + " (" + device + "): " + ss(port_.errorString()));
    port_.setBaudRate(baud_);
    port_.setParity(parity_);
    port_.setDataBits(data_bits_);
    port_.setStopBits(stop_bits_);
    if (rts_) port_.setRequestToSend(true);
}

void QtSerialLine::set_rts_enable(bool on) {
    rts_ = on;
    if (port_.isOpen() && port_.flowControl() != QSerialPort::HardwareControl) port_.setRequestToSend(on);
}

void QtSerialLine::pull() {
    if (!port_.isOpen()) return;
    port_.waitForReadyRead(0);
    if (port_.error() == QSerialPort::TimeoutError) port_.clearError();  // nothing waiting is no fault
    // A device that went away (a USB adapter pulled, the analyser's end of a
    // pseudo-terminal closed) leaves the port useless: close it and say so.
    const auto error = port_.error();
    if (error == QSerialPort::ResourceError || error == QSerialPort::ReadError) {
        const std::string why = ss(port_.errorString());
        port_.clearError();
        port_.close();
        throw SerialError("The serial device is no longer available: " + why);
    }
}

int QtSerialLine::in_buffer_count() {
    pull();
    return port_.isOpen() ? static_cast<int>(port_.bytesAvailable()) : 0;
}

void QtSerialLine::clear_input() {
    if (!port_.isOpen()) return;
    pull();
    port_.clear(QSerialPort::Input);
    port_.readAll();
}

void QtSerialLine::clear_output() {
    if (port_.isOpen()) port_.clear(QSerialPort::Output);
}

void QtSerialLine::output(std::string_view text) {
    if (!port_.isOpen()) throw SerialError("The serial port is not open.");
    const qint64 n = port_.write(text.data(), static_cast<qint64>(text.size()));
    if (n != static_cast<qint64>(text.size())) throw SerialError("Sending failed: " + ss(port_.errorString()));
    port_.waitForBytesWritten(1000);
}

std::string QtSerialLine::input() {
    if (!port_.isOpen()) return {};
    pull();
    const QByteArray b = input_len_ > 0 ? port_.read(input_len_) : port_.readAll();
    return ss(b);
}

}  // namespace kyt
