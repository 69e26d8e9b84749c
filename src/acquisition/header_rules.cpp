#include "acquisition/header_rules.h"

#include "common/text.h"

namespace kyt {

HeaderChoices read_header_choices(const StorePlace& at, bool single_rate) {
    HeaderChoices c;
    for (int i = 0; i < kListCount; ++i) {
        StoredList l = read_list(at, i, c.unreadable_counts);
        c.lists[static_cast<std::size_t>(i)] = std::move(l.elements);
        c.mandatory[static_cast<std::size_t>(i)] = l.mandatory;
    }
    for (int field : {kSerialField, kControlField}) c.mandatory[static_cast<std::size_t>(field)] = read_mandatory(at, field);
    if (single_rate) c.mandatory[kSetRateField] = true;
    return c;
}

EntryOutcome check_entry(int field, std::string_view text, bool mandatory) {
    EntryOutcome r;
    const bool numeric_check = field == kSetRateField || (field == kVtbiField && mandatory);
    if (numeric_check) {
        if (text.empty()) {
            r.filled = false;
        } else if (const auto value = numeric_value(text); !value) {
            r.filled = false;
            r.not_numeric = true;
        } else {
            r.filled = true;
            if (field == kSetRateField) r.set_rate = *value;
        }
    } else if (mandatory) {
        r.filled = !text.empty();
    }
    return r;
}

std::optional<int> first_unfit_field(const HeaderEntries& entries, const MandatoryFlags& mandatory) {
    for (int i = 0; i < kHeaderFieldCount; ++i) {
        if (!mandatory[static_cast<std::size_t>(i)]) continue;
        const std::string& text = entries.field[static_cast<std::size_t>(i)];
        if (text.empty()) return i;
        if ((i == kVtbiField || i == kSetRateField) && !is_numeric(text)) return i;
    }
    return std::nullopt;
}

void load_report_rec(ReportRec& rec, const HeaderEntries& e) {
    rec.manufacturer = trim(e.field[0]);
    rec.model = trim(e.field[3]);
    rec.serial_no = trim(e.field[kSerialField]);
    rec.control_no = trim(e.field[kControlField]);
    rec.department = trim(e.field[6]);
    rec.location = trim(e.field[5]);
    rec.set_rates = trim(e.field[kSetRateField]);
    rec.vtbi = trim(e.field[kVtbiField]);
    rec.comment = trim(e.comment);
}

void take_untrimmed_fields(ReportRec& rec, const HeaderEntries& e) {
    rec.technician = e.field[2];
    rec.pump_type = e.field[7];
    rec.pump_tolerance = e.field[8];
}

}  // namespace kyt
