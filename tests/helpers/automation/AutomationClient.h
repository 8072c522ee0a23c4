#pragma once

#include "platform/windows/ComPointer.h"
#include "platform/windows/OwnedVariant.h"
#include "platform/windows/WideText.h"

#include <string>
#include <vector>

namespace qel::test {

using windows::ComPointer;
using windows::OwnedVariant;

/// A COM apartment of the current thread.
class Apartment {
public:
    Apartment();
    ~Apartment();
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

/// A new object by its ProgID. Fails the test when it cannot be created.
ComPointer<IDispatch> CreateByName(const wchar_t* progId);

OwnedVariant Text(const std::string& text);
OwnedVariant Number(double number);
OwnedVariant Day(double days);
OwnedVariant Missing();
/// An array of variants that hold texts.
OwnedVariant Texts(const std::vector<std::string>& texts, LONG lowerBound = 0);
/// A reference to another variant.
OwnedVariant ReferenceTo(OwnedVariant& value);

struct CallResult {
    HRESULT status = E_FAIL;
    HRESULT code = S_OK; ///< of the exception
    std::string description, source;
    OwnedVariant value;
};

using Arguments = std::vector<OwnedVariant>;

/// Calls IDispatch::Invoke like a script. The last `names.size()` arguments are named.
CallResult Invoke(IDispatch* object, const wchar_t* member, Arguments& arguments,
                  const std::vector<const wchar_t*>& names = {},
                  WORD flags = DISPATCH_METHOD | DISPATCH_PROPERTYGET);

std::string TextIn(const OwnedVariant& value);

} // namespace qel::test
