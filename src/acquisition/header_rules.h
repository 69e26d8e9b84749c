#pragma once
// The rules of the test header dialog without its widgets: which entries are
// checked when, what Continue demands, and how the entries become the header
// record.
//
// Field numbers are those of the mandatory flags: 0 to 8 the nine listed
// fields (the list indexes of the administrator's lists), 9 the serial number,
// 10 the control number. The comment has no number and is never checked.

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "admin/admin_lists.h"
#include "common/report_rec.h"

namespace kyt {

inline constexpr int kHeaderFieldCount = kMandatoryCount;
inline constexpr int kVtbiField = 1;
inline constexpr int kSetRateField = 4;

using MandatoryFlags = std::array<bool, 12>;

// The six fields that name one device; an appended file already names it.
inline constexpr std::array<int, 6> kIdentifyingFields{0, 3, kSerialField, kControlField, 5, 6};

struct HeaderEntries {
    std::array<std::string, kHeaderFieldCount> field;
    std::string comment;
};

// What the header offers when it opens: the nine lists and the flags, with
// the set rate made mandatory for a single-rate test whatever is stored.
struct HeaderChoices {
    std::array<std::vector<std::string>, kListCount> lists;
    MandatoryFlags mandatory{};
    std::vector<std::string_view> unreadable_counts;  // counts out of range; their lists are empty
};
HeaderChoices read_header_choices(const StorePlace& at, bool single_rate);

// The outcome of Enter in a field, or of leaving it.
struct EntryOutcome {
    std::optional<bool> filled;      // the field's new "filled" state, when the entry decides it
    bool not_numeric = false;        // the entry must be refused and the focus go back
    std::optional<double> set_rate;  // an accepted set rate, as a number
};
// The set rate is always checked for a number; the volume only when it is
// mandatory; the other fields only for being filled, and only when mandatory.
EntryOutcome check_entry(int field, std::string_view text, bool mandatory);

// The first field, in number order, that is mandatory and empty, or for the
// volume and the set rate mandatory and not numeric; empty when all are in
// order. A field that is not mandatory is not looked at.
std::optional<int> first_unfit_field(const HeaderEntries& entries, const MandatoryFlags& mandatory);

// The nine fields of the record taken with blanks off both ends.
void load_report_rec(ReportRec& rec, const HeaderEntries& entries);
// Technician, pump type and tolerance, taken as typed.
void take_untrimmed_fields(ReportRec& rec, const HeaderEntries& entries);

}  // namespace kyt
