#pragma once
// The administrator's lists of header values and the mandatory flags, as they
// lie in the settings store. The list index is the same in the administrator
// form (cmbSysAdData) and the header dialog (cmbHdr), and it is the number in
// the mandatory keys.
//
// Key forms: a count key holds the element count in plain digits (default 0);
// an element key is the stem and the element's position from 1 in plain
// digits ("Manufacturer1", "Manufacturer2", "FlowRate12"), default empty; a
// mandatory key holds "True" or "False", and reads as false until written.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/settings/settings_store.h"

#include "common/numbers.h"

namespace kyt {

struct AdminList {
    std::string_view count_key;
    std::string_view stem;
    std::string_view caption;  // title of the list's frame on the administrator form
    bool numeric_only;
};

inline constexpr int kListCount = 9;

inline constexpr std::array<AdminList, kListCount> kAdminLists{{
    {"tempNumManu", "Manufacturer", "Manufacturers", false},
    {"tempNumVTBI", "VTBI", "VTBI (ml)", true},
    {"tempNumTechnicians", "Technician", "Technicians", false},
    {"tempNumModels", "Model", "Models", false},
    {"tempNumFlowRates", "FlowRate", "FlowRates (ml/hr)", true},
    {"tempNumLocations", "Location", "Locations", false},
    {"tempNumDepartments", "Department", "Departments", false},
    {"tempNumPumpTypes", "PumpType", "Types", false},
    {"tempNumPumpTolerances", "PumpTolerance", "Tolerances +/- %", false},
}};

// Indexes 0 to 8 belong to the lists, 9 to the serial number and 10 to the
// control number. The program-wide flag array has a twelfth place that no
// field uses.
inline constexpr int kMandatoryCount = 11;
inline constexpr int kSerialField = 9;
inline constexpr int kControlField = 10;
inline constexpr std::array<std::string_view, kMandatoryCount> kMandatoryKeys{
    "FIELD0MANDATORY", "FIELD1MANDATORY", "FIELD2MANDATORY", "FIELD3MANDATORY",
    "FIELD4MANDATORY", "FIELD5MANDATORY", "FIELD6MANDATORY", "FIELD7MANDATORY",
    "FIELD8MANDATORY", "FIELD9MANDATORY", "FIELD10MANDATORY",
};

// The password keys. The password is plain text; while its key is absent
// the built-in code stands in for it.
inline constexpr std::string_view kPasswordKey = "password";
inline constexpr std::string_view kPasswordRequiredKey = "ispasswordrqd";
inline constexpr std::string_view kBuiltInPassword = "7305";

// A tenth count with no list of its own, read and written back with the
// others so that the store keeps it.
inline constexpr std::string_view kVolumesCountKey = "tempNumVolumes";

// The ten counts are read and written in this order: the manufacturers'
// count, the volumes' count, then the other lists in index order.
inline constexpr int kCountSlots = 10;
using ListCounts = std::array<std::int16_t, kCountSlots>;
constexpr int count_slot(int list) { return list == 0 ? 0 : list + 1; }
std::string_view count_key_at(int slot);

std::string element_key(int list, int n);


// One place in the store: the spelling of application and section differs
// from caller to caller; the store compares them without regard to case.
struct StorePlace {
    SettingsStore& store;
    std::string_view app;
    std::string_view section;

    std::string get(std::string_view key, std::string_view default_value = {}) const {
        return store.get_setting(app, section, key, default_value);
    }
};

// A count as stored; empty when the text holds a number outside the 16-bit
// range, which no list can have.
std::optional<std::int16_t> read_count(const StorePlace& at, std::string_view key);
bool read_mandatory(const StorePlace& at, int field);

// One list as stored: its count, as many elements (an absent one is the empty
// text) and its mandatory flag. A count out of range is added to `unreadable`
// and reads as 0.
struct StoredList {
    std::int16_t count = 0;
    std::vector<std::string> elements;
    bool mandatory = false;
};
StoredList read_list(const StorePlace& at, int list, std::vector<std::string_view>& unreadable);

// The text that tells of a count out of range.
std::string unreadable_count_message(std::string_view key);

// What the administrator form holds: the ten counts, the nine lists and the
// eleven mandatory flags.
struct AdminLists {
    ListCounts list_count{};
    std::array<std::vector<std::string>, kListCount> lists;
    std::array<bool, kMandatoryCount> mandatory{};
    // Count keys whose stored text is out of range; their lists read as empty.
    std::vector<std::string_view> unreadable_counts;
};

AdminLists load_admin_lists(const StorePlace& at);

// Writes the counts, then list by list the elements 1 to the count, deletes
// the elements from count + 1 to what was loaded, and writes the mandatory
// flag; then the two flags without a list, and last the password. An element
// beyond the list's texts is written empty.
void save_admin_lists(const StorePlace& at, const AdminLists& lists, const ListCounts& loaded_count,
                      std::string_view password);

}  // namespace kyt
