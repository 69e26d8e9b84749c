#pragma once
// A file under tests/data as bytes; empty when missing, so that a comparison with it fails.

#include <QtGlobal>
#include <string>

#include "common/file_text.h"

inline std::string test_data(const std::string& name) {
    return kyt::read_text_file(qEnvironmentVariable("KYT_SOURCE_DIR").toStdString() + "/tests/data/" + name).value_or("");
}
