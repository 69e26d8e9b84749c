#include "admin/admin_lists.h"

#include <algorithm>

#include "common/numbers.h"

namespace kyt {

std::string_view count_key_at(int slot) {
    if (slot == 1) return kVolumesCountKey;
    return kAdminLists[static_cast<std::size_t>(slot == 0 ? 0 : slot - 1)].count_key;
}

std::string element_key(int list, int n) {
    return std::string(kAdminLists[static_cast<std::size_t>(list)].stem) + std::to_string(n);
}


std::optional<std::int16_t> read_count(const StorePlace& at, std::string_view key) {
    return to_int16(leading_number(at.get(key, "0")));
}

bool read_mandatory(const StorePlace& at, int field) {
    return text_to_bool(at.get(kMandatoryKeys[static_cast<std::size_t>(field)], "0"));
}

StoredList read_list(const StorePlace& at, int list, std::vector<std::string_view>& unreadable) {
    StoredList l;
    const std::string_view key = kAdminLists[static_cast<std::size_t>(list)].count_key;
    const auto count = read_count(at, key);
    if (!count) unreadable.push_back(key);
    l.count = count.value_or(0);
    for (int n = 1; n <= l.count; ++n) l.elements.push_back(at.get(element_key(list, n)));
    l.mandatory = read_mandatory(at, list);
    return l;
}

std::string unreadable_count_message(std::string_view key) {
    return "The stored count \"" + std::string(key) + "\" is not a list size; that list is shown empty.";
}

AdminLists load_admin_lists(const StorePlace& at) {
    AdminLists a;
    const auto volumes = read_count(at, kVolumesCountKey);
    if (!volumes) a.unreadable_counts.push_back(kVolumesCountKey);
    a.list_count[1] = volumes.value_or(0);
    for (int list = 0; list < kListCount; ++list) {
        StoredList l = read_list(at, list, a.unreadable_counts);
        a.list_count[static_cast<std::size_t>(count_slot(list))] = l.count;
        a.lists[static_cast<std::size_t>(list)] = std::move(l.elements);
        a.mandatory[static_cast<std::size_t>(list)] = l.mandatory;
    }
    for (int field : {kSerialField, kControlField}) a.mandatory[static_cast<std::size_t>(field)] = read_mandatory(at, field);
    return a;
}

void save_admin_lists(const StorePlace& at, const AdminLists& a, const ListCounts& loaded_count,
                      std::string_view password) {
    SettingsStore& store = at.store;
    const auto save = [&](std::string_view key, std::string_view value) {
        store.save_setting(at.app, at.section, key, value);
    };
    const auto save_flag = [&](int field) {
        save(kMandatoryKeys[static_cast<std::size_t>(field)], a.mandatory[static_cast<std::size_t>(field)] ? "True" : "False");
    };
    for (int slot = 0; slot < kCountSlots; ++slot)
        save(count_key_at(slot), std::to_string(a.list_count[static_cast<std::size_t>(slot)]));
    for (int list = 0; list < kListCount; ++list) {
        const auto slot = static_cast<std::size_t>(count_slot(list));
        const std::vector<std::string>& texts = a.lists[static_cast<std::size_t>(list)];
        const int count = a.list_count[slot];
        for (int n = 1; n <= count; ++n) {
            const auto i = static_cast<std::size_t>(n - 1);
            save(element_key(list, n), i < texts.size() ? texts[i] : std::string());
        }
        for (int n = std::max(count + 1, 1); n <= loaded_count[slot]; ++n) store.delete_setting(at.app, at.section, element_key(list, n));
        save_flag(list);
    }
    save_flag(kSerialField);
    save_flag(kControlField);
    save(kPasswordKey, password);
}

}  // namespace kyt
