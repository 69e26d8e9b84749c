// The settings as the core reads them: the start-up keys (read_ini), the
// save folder the file dialogs remember, and the administrator's lists with
// their counts and mandatory flags. The input is the settings file's content
// as the store hands it out: records "key=value", each closed by a NUL byte;
// keys are found without regard to case, the first record of a key counts,
// and a key without a record is absent. The record "@path=..." is the path
// given to remember_save_dir.
//
// Checked: the folders are the stored texts or the defaults and are written
// back unchanged, so a second start reads the same; a port stored as plain
// digits is that number; remember_save_dir gives the path up to its last
// separator; the administrator's lists written back and read again are the
// lists that were read.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "admin/admin_lists.h"
#include "app/settings/read_ini.h"
#include "common/numbers.h"
#include "common/shared_state.h"

namespace {

void check(bool ok) {
    if (!ok) std::abort();
}

std::string lower(std::string_view s) {
    std::string r(s);
    for (char& c : r) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return r;
}

// A store of texts by key; application and section are not told apart, as
// no two keys of the console share a name across sections.
class MapStore : public kyt::SettingsStore {
public:
    std::string get_setting(std::string_view, std::string_view, std::string_view key,
                            std::string_view default_value) override {
        const auto v = find(key);
        return v ? *v : std::string(default_value);
    }
    void save_setting(std::string_view, std::string_view, std::string_view key, std::string_view value) override {
        values_[lower(key)] = std::string(value);
    }
    void delete_setting(std::string_view, std::string_view, std::string_view key) override {
        values_.erase(lower(key));
    }
    std::optional<std::string> find(std::string_view key) const {
        const auto it = values_.find(lower(key));
        if (it == values_.end()) return std::nullopt;
        return it->second;
    }
    void add_if_absent(std::string_view key, std::string_view value) { values_.try_emplace(lower(key), value); }

private:
    std::map<std::string, std::string> values_;
};

MapStore store_of(std::string_view in) {
    MapStore s;
    std::size_t pos = 0;
    while (pos < in.size()) {
        std::size_t end = in.find('\0', pos);
        if (end == std::string_view::npos) end = in.size();
        const std::string_view record = in.substr(pos, end - pos);
        const std::size_t eq = record.find('=');
        if (eq != std::string_view::npos) s.add_if_absent(record.substr(0, eq), record.substr(eq + 1));
        pos = end + 1;
    }
    return s;
}

bool plain_digits(const std::string& s, std::size_t most) {
    return !s.empty() && s.size() <= most &&
           std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

void start_up(MapStore& store) {
    const MapStore stored = store;
    const std::string start = "/start";
    kyt::SharedState state;
    kyt::read_ini(store, start, state);
    const kyt::Folders& d = state.dirs;

    const std::pair<const char*, const std::string*> folders[] = {
        {"maindir", &d.main_dir}, {"savedir", &d.save_dir}, {"initdir", &d.init_dir}, {"helpdir", &d.help_dir}};
    const std::string defaults[] = {start, start + "/save", start + "/save", start + "/help"};
    for (std::size_t i = 0; i < 4; ++i) {
        const auto [key, value] = folders[i];
        check(*value == stored.find(key).value_or(defaults[i]));
        check(store.find(key) == *value);
    }

    const std::string comm = stored.find("comm").value_or("2");
    if (plain_digits(comm, 4)) check(state.port.comm_port == std::stoi(comm));
    const std::string series = stored.find("series").value_or("C");
    check(state.port.series == (series.empty() ? ' ' : series.front()));

    // The next start reads the folders it wrote.
    kyt::SharedState again;
    kyt::read_ini(store, "/elsewhere", again);
    check(again.dirs.main_dir == d.main_dir && again.dirs.save_dir == d.save_dir &&
          again.dirs.init_dir == d.init_dir && again.dirs.help_dir == d.help_dir);

    const std::string path = stored.find("@path").value_or("");
    MapStore after;
    const std::string folder = kyt::remember_save_dir(after, d.save_dir, path);
    const std::size_t sep = path.rfind(kyt::kSep);
    check(folder == (sep == std::string::npos ? std::string() : path.substr(0, sep)));
    check(after.find("savedir") == (path.empty() ? std::nullopt : std::optional<std::string>(d.save_dir)));

    kyt::text_to_bool(stored.find(kyt::kPasswordRequiredKey).value_or("0"));
}

// The lists are read only when their counts, together, stay within this:
// a count is parsed the same whatever its size, and a long list only
// repeats the element reads.
constexpr long max_elements = 200;

void admin_lists(MapStore& store) {
    const kyt::StorePlace at{store, kyt::kApp, kyt::kStartup};
    long total = 0;
    for (int slot = 0; slot < kyt::kCountSlots; ++slot)
        total += std::max<int>(0, kyt::read_count(at, kyt::count_key_at(slot)).value_or(0));
    if (total > max_elements) return;

    const kyt::AdminLists lists = kyt::load_admin_lists(at);
    for (const std::string_view key : lists.unreadable_counts) check(!kyt::read_count(at, key));

    MapStore written;
    const kyt::StorePlace there{written, "KYT", "startup"};
    kyt::save_admin_lists(there, lists, lists.list_count, "secret");
    const kyt::AdminLists back = kyt::load_admin_lists(there);
    check(back.unreadable_counts.empty());
    check(back.list_count == lists.list_count);
    check(back.lists == lists.lists);
    check(back.mandatory == lists.mandatory);
    check(written.find(kyt::kPasswordKey) == "secret");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view in(reinterpret_cast<const char*>(data), size);
    MapStore store = store_of(in);
    start_up(store);
    MapStore fresh = store_of(in);
    admin_lists(fresh);
    return 0;
}
