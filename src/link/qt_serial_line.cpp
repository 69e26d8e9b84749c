#include "link/qt_serial_line.h"

#include <algorithm>

#include <QStringList>
#include <QTimer>

#include "app/settings/settings_store.h"
#include "common/qt_text.h"

namespace kyt {

QtSerialLine::QtSerialLine(SettingsStore& settings) : settings_(settings) {
    // A device that goes away makes the system report the line as readable
    // for ever; QSerialPort turns each report into an error. Taken at the
    // first one, the loss costs nothing more.
    QObject::connect(&port_, &QSerialPort::errorOccurred, &port_, [this](QSerialPort::SerialPortError e) {
        if (e == QSerialPort::ResourceError || e == QSerialPort::ReadError) device_lost();
    });
}

void QtSerialLine::device_lost() {
    if (!port_.isOpen()) return;
    lost_ = "The serial device is no longer available: " + ss(port_.errorString());
    loss_untold_ = true;
    // Closed once QSerialPort has left the handler that reported the error.
    QTimer::singleShot(0, &port_, [this] {
        close_lost_port();
        tell_loss();
    });
}

void QtSerialLine::close_lost_port() {
    if (!port_.isOpen()) return;
    // What the device sent before it went is still to be read.
    held_ += ss(port_.readAll());
    port_.close();
    port_.clearError();
}

void QtSerialLine::tell_loss() {
    if (!loss_untold_) return;
    loss_untold_ = false;
    if (lost_handler_) lost_handler_(SerialError(lost_));
}

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
    lost_.clear();
    loss_untold_ = false;
    held_.clear();
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
    if (port_.isOpen()) {
        port_.waitForReadyRead(0);
        if (port_.error() == QSerialPort::TimeoutError) port_.clearError();  // nothing waiting is no fault
    }
    // Once the device is gone, what it sent before is read first; a read
    // after that fails, and the first failure (or the lost handler,
    // whichever comes first) is the one that tells it.
    if (!lost_.empty()) {
        close_lost_port();
        if (!held_.empty()) return;
        const bool told = !loss_untold_;
        loss_untold_ = false;
        throw SerialError(lost_, told);
    }
}

int QtSerialLine::in_buffer_count() {
    pull();
    return static_cast<int>(held_.size()) + (port_.isOpen() ? static_cast<int>(port_.bytesAvailable()) : 0);
}

void QtSerialLine::clear_input() {
    if (port_.isOpen()) pull();
    held_.clear();
    if (!port_.isOpen()) return;
    port_.clear(QSerialPort::Input);
    port_.readAll();
}

void QtSerialLine::clear_output() {
    // Every output() hands its text to the system before it returns, so
    // nothing of the console's waits here to be dropped. The system's own
    // queue is left alone: what it holds counts as sent, and a screen that
    // clears the buffers as it opens must not take back the command that
    // started its test (on a pseudo-terminal that queue holds a command until
    // the far end reads it).
}

void QtSerialLine::output(std::string_view text) {
    if (!port_.isOpen()) throw SerialError("The serial port is not open.");
    const qint64 n = port_.write(text.data(), static_cast<qint64>(text.size()));
    if (n != static_cast<qint64>(text.size())) throw SerialError("Sending failed: " + ss(port_.errorString()));
    port_.waitForBytesWritten(1000);
}

std::string QtSerialLine::input() {
    pull();
    if (!held_.empty()) {
        const std::size_t n = input_len_ > 0 ? std::min<std::size_t>(std::size_t(input_len_), held_.size()) : held_.size();
        std::string r = held_.substr(0, n);
        held_.erase(0, n);
        return r;
    }
    if (!port_.isOpen()) return {};
    const QByteArray b = input_len_ > 0 ? port_.read(input_len_) : port_.readAll();
    return ss(b);
}

}  // namespace kyt
