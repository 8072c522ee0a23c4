#pragma once

#include "tests/wizard/WizardBench.h"

#include <gtest/gtest.h>

namespace qel::test {

/// A bench that fails its test when a message box was shown and not taken.
class TestBench : public WizardBench {
public:
    using WizardBench::WizardBench;
    ~TestBench() {
        for (const std::string& text : TakeMessages()) {
            ADD_FAILURE() << "a message box: " << text;
        }
    }
    TestBench(const TestBench&) = delete;
    TestBench& operator=(const TestBench&) = delete;
};

} // namespace qel::test
