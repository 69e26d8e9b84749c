#pragma once
// The sample transfers and expected files kept under tests/data, as bytes;
// empty when a file is missing, so that a comparison with it fails.

#include <QtGlobal>
#include <string>

#include "common/file_text.h"

inline std::string test_data(const std::string& name) {
    const auto text = kyt::read_text_file(qEnvironmentVariable("KYT_SOURCE_DIR").toStdString() + "/tests/data/" + name);
    return text.value_or(std::string());
}
