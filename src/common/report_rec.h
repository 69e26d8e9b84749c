#pragma once
// The test header record: what the operator says of the device under test.
// Twelve texts, all as typed (the numbers too); empty at program start and
// overwritten by each use of the header dialog.

#include <string>

namespace kyt {

struct ReportRec {
    std::string manufacturer;
    std::string model;
    std::string serial_no;
    std::string control_no;
    std::string department;
    std::string location;
    std::string set_rates;
    std::string vtbi;
    std::string comment;
    std::string technician;
    std::string pump_type;
    std::string pump_tolerance;

    bool operator==(const ReportRec&) const = default;
};

}  // namespace kyt
