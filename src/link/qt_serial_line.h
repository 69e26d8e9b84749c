#pragma once
// The serial line over QSerialPort. Comm n is the device named by key "comm"n
// of section "Ports" in the settings (default /dev/ttyS0 to /dev/ttyS3), so a
// USB adapter or a pseudo-terminal can stand behind any of the four.

#include <QSerialPort>

#include "link/serial_line.h"

namespace kyt {

class SettingsStore;

class QtSerialLine final : public SerialLine {
public:
    explicit QtSerialLine(SettingsStore& settings);

    void set_port_number(int n) override { port_number_ = n; }
    int port_number() const override { return port_number_; }
    void set_settings(std::string_view settings) override;
    void set_port_open(bool open) override;
    bool port_open() const override { return port_.isOpen(); }
    void set_rts_enable(bool on) override;
    int in_buffer_count() override;
    void clear_input() override;
    void clear_output() override;
    void set_rthreshold(int) override {}  // reads are polled by timers; no event is raised on arrival
    void set_input_len(int n) override { input_len_ = n; }
    void output(std::string_view text) override;
    std::string input() override;
    std::string device_name(int port) const override;
    void set_lost_handler(std::function<void(const SerialError&)> handler) override { lost_handler_ = std::move(handler); }

private:
    // The device went away: the port is closed at once, so that the system
    // stops signalling a dead line, and the loss is told once, by the next
    // read or else by the lost handler.
    void device_lost();
    void tell_loss();
    // Keeps what QSerialPort had buffered from the lost device, then closes.
    void close_lost_port();

    // Moves what the system holds for the port into QSerialPort's buffer; the
    // console reads from timer ticks and busy waits, not from read events.
    void pull();

    SettingsStore& settings_;
    QSerialPort port_;
    int port_number_ = 1;
    int input_len_ = 0;
    bool rts_ = false;
    qint32 baud_ = 9600;
    QSerialPort::Parity parity_ = QSerialPort::NoParity;
    QSerialPort::DataBits data_bits_ = QSerialPort::Data8;
    QSerialPort::StopBits stop_bits_ = QSerialPort::OneStop;
    std::string lost_;         // why the device went away; empty while it is there
    std::string held_;         // what the lost device sent that is not read yet
    bool loss_untold_ = false;
    std::function<void(const SerialError&)> lost_handler_;
};

}  // namespace kyt
