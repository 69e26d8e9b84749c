#include "acquisition/live_test.h"

#include <algorithm>
#include <cmath>

#include "common/numbers.h"
#include "common/text.h"
#include "reports/capture.h"

namespace kyt {

namespace {

// The whole part, as the axis rules take it: the next whole number down.
double whole(double v) { return std::floor(v); }

}  // namespace

std::string flow_range_caption(char mode) {
    switch (mode) {
        case 'A': return "Single Rate - Low range flow (LOW)";
        case 'B': return "Single Rate - high flow range (HI)";
        case 'C': return "Single Rate - pulsatile flow (PUL)";
        default: return {};
    }
}

std::string seconds_to_hhmmss(long seconds) {
    const long hours = seconds / 3600;
    const long minutes = (seconds - hours * 3600) / 60;
    const long rest = seconds - hours * 3600 - minutes * 60;
    return format_picture(static_cast<double>(hours), "00") + ":" + format_picture(static_cast<double>(minutes), "00") +
           ":" + format_picture(static_cast<double>(rest), "00");
}

AxisChange FlowAxis::initial(const std::string& set_rate) {
    const double rate = set_rate.empty() ? 100.0 : leading_number(set_rate);
    return {rate * 0.5, rate * 1.5};
}

AxisChange FlowAxis::sample(double flow, double avg_flow) {
    AxisChange c;
    if (first_) {
        first_ = false;
        base_ = whole(avg_flow);
        c.max = whole(base_) * 1.5;
        c.min = whole(base_) - base_ * 0.5;
        max_flow_ = 0;
        min_flow_ = 100;
        return c;
    }
    double low = 0, high = 0;
    if (min_flow_ > flow) {
        min_flow_ = flow;
        low = avg_flow - min_flow_;
        c.min = whole(flow) > 0 ? whole(flow) : 0.0;
    }
    if (max_flow_ < flow) {
        max_flow_ = flow;
        high = max_flow_ - avg_flow;
        c.max = whole(std::max(low, high) + flow + 0.5);
    }
    return c;
}

std::string PressureAxis::title() const {
    switch (unit_) {
        case OcclusionUnit::mmhg: return "Pressure(mmHg)";
        case OcclusionUnit::kpa: return "Pressure(kPa)";
        default: return "Pressure(PSI)";
    }
}

AxisChange PressureAxis::initial() const {
    switch (unit_) {
        case OcclusionUnit::mmhg: return {0.0, 800.0};
        case OcclusionUnit::kpa: return {0.0, 100.0};
        default: return {0.0, 15.0};
    }
}

double PressureAxis::value(const OTData& r) const {
    switch (unit_) {
        case OcclusionUnit::mmhg: return r.mmhg;
        case OcclusionUnit::kpa: return r.kpa;
        default: return r.psi;
    }
}

AxisChange PressureAxis::sample(const OTData& r) {
    const double v = value(r);
    AxisChange c;
    if (first_) {
        first_ = false;
        if (v < 1.0) {
            c = {0.0, 1.0};
        } else {
            c = {whole(v) * 0.5, whole(v) * 1.5};
        }
        min_ = max_ = v;
        return c;
    }
    if (v < min_) {
        min_ = v;
        c.min = whole(v);
    }
    if (v > max_) {
        max_ = v;
        c.max = whole(v) + 1.0;
    }
    return c;
}

SummaryGather::Tick SummaryGather::take(const std::string& block, bool& first_buffer) {
    if (first_buffer) {
        text_.clear();
        first_buffer = false;
    }
    const bool plain = block.find(BELL) == std::string::npos && block.find(ENQ) == std::string::npos;
    if (text_.size() < 50001) text_ += plain ? block : std::string(CRLF);
    else if (plain) text_ += block;
    Tick t;
    if (block.size() == 2) t.reply_error = true;
    else process_buffer(text_);
    t.ended = block.find(BELL) != std::string::npos;
    return t;
}

}  // namespace kyt
