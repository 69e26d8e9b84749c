#include "faults.h"

#include <algorithm>
#include <string_view>

namespace sim {

std::string damage_line_ends(std::string text, std::mt19937_64& random) {
    static constexpr std::string_view damaged[] = {"\r\n\n\n", "\r\r \n", "\r\n\r "};
    std::bernoulli_distribution hit(0.5);
    std::size_t kind = 0;
    for (std::size_t at = text.find("\r\n\r\n"); at != std::string::npos; at = text.find("\r\n\r\n", at + 4)) {
        if (!hit(random)) continue;
        text.replace(at, 4, damaged[kind]);
        kind = (kind + 1) % std::size(damaged);
    }
    return text;
}

std::vector<std::string> split_into_pieces(const std::string& text, std::mt19937_64& random) {
    if (text.size() < 2) return {text};
    const std::size_t wanted = std::max<std::size_t>(std::uniform_int_distribution<std::size_t>(2, 4)(random),
                                                     text.size() / 100);
    const std::size_t pieces = std::min(wanted, text.size());
    // Cut points drawn at random, distinct and in order.
    std::vector<std::size_t> cuts;
    std::uniform_int_distribution<std::size_t> where(1, text.size() - 1);
    while (cuts.size() + 1 < pieces) {
        const std::size_t c = where(random);
        if (std::find(cuts.begin(), cuts.end(), c) == cuts.end()) cuts.push_back(c);
    }
    std::sort(cuts.begin(), cuts.end());
    std::vector<std::string> out;
    std::size_t from = 0;
    for (std::size_t c : cuts) {
        out.push_back(text.substr(from, c - from));
        from = c;
    }
    out.push_back(text.substr(from));
    return out;
}

}  // namespace sim
