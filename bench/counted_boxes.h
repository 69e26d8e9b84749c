#pragma once
// Message boxes for the benchmarks: none is expected, and one would be
// counted instead of shown.

#include <string>

#include "common/message_boxes.h"

namespace bench {

class CountedBoxes final : public kyt::MessageBoxes {
public:
    int show(const std::string&, int style, const std::string&) override {
        ++count;
        return kyt::box_default_answer(style);
    }
    int count = 0;
};

}  // namespace bench
