#include "platform/windows/ProviderFailure.h"

#include <gtest/gtest.h>

namespace qel::windows {
namespace {

TEST(ProviderFailure, HasTheNumberThatMacrosKnow) {
    const struct {
        HRESULT result;
        std::int32_t number;
    } cases[] = {{E_OUTOFMEMORY, 7},           {STG_E_FILENOTFOUND, 53}, {E_ACCESSDENIED, 70},
                 {E_NOINTERFACE, 430},         {E_NOTIMPL, 445},         {DISP_E_NOTACOLLECTION, 451},
                 {HRESULT{-2146825037}, 3251}, {E_FAIL, E_FAIL}};
    for (const auto& test : cases) {
        EXPECT_EQ(NumberOfResult(test.result), test.number);
        EXPECT_EQ(NumberOfResult(ResultOfNumber(test.number)), test.number);
    }
}

} // namespace
} // namespace qel::windows
