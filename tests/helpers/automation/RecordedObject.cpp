#include "tests/helpers/automation/RecordedObject.h"

#include "platform/value/Conversion.h"
#include "platform/windows/ComObject.h"
#include "platform/windows/DispatchObject.h"
#include "platform/windows/VariantConversion.h"
#include "tests/helpers/automation/DispatchDouble.h"

#include <fmt/format.h>

namespace qel::test {

namespace {

using Record = std::shared_ptr<ObjectRecord>;

class Recorded : public windows::ComObject<IDispatch> {
public:
    Recorded(Record record, std::string path) : record_(std::move(record)), path_(std::move(path)) {}

    const std::string& Path() const { return path_; }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) override {
        *info = nullptr;
        return DISP_E_BADINDEX;
    }
    STDMETHODIMP GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT /*count*/, LCID /*locale*/,
                               DISPID* ids) override {
        names_.push_back(windows::ToUtf8(names[0]));
        ids[0] = static_cast<DISPID>(names_.size());
        return S_OK;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID /*reserved*/, LCID locale, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* /*details*/, UINT* /*wrongArgument*/) override {
        if (locale != windows::macroLocale) {
            return TYPE_E_INVDATAREAD;
        }
        std::string member = names_.at(static_cast<std::size_t>(id) - 1);
        if (!path_.empty()) {
            member.insert(0, path_ + ".");
        }
        std::vector<std::string> texts;
        for (UINT i = arguments->cArgs; i > 0; --i) {
            texts.push_back(Shown(windows::Dereferenced(arguments->rgvarg[i - 1])));
        }
        if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
            Add(member + " = " + texts.at(0));
        } else if (flags == DISPATCH_METHOD) {
            Add(member + (texts.empty() ? "" : fmt::format("({})", fmt::join(texts, ","))));
        } else {
            Get(member + (texts.empty() ? "" : fmt::format("({})", fmt::join(texts, ","))), result);
        }
        return S_OK;
    }

private:
    void* Find(REFIID id) override {
        return id == IID_IUnknown || id == IID_IDispatch ? static_cast<IDispatch*>(this) : nullptr;
    }

    void Add(const std::string& line) {
        record_->lines.push_back(line);
        record_->afterLine(line);
    }

    void Get(const std::string& member, VARIANT* result) {
        const auto value = record_->values.find(member);
        *result = value != record_->values.end()
                      ? windows::ToAutomation(value->second).Release()
                      : ObjectValue(ComPointer<IDispatch>::Adopt(
                                        std::make_unique<Recorded>(record_, member).release()))
                            .Release();
    }

    static std::string Shown(const VARIANT& value) {
        if (V_VT(&value) == VT_DISPATCH) {
            return dynamic_cast<Recorded&>(*V_DISPATCH(&value)).Path();
        }
        if (V_VT(&value) == VT_ERROR) {
            return {};
        }
        const Variant read = windows::FromAutomation(value);
        if (!read.IsArray()) {
            return Shown(read);
        }
        const auto& array = read.As<std::shared_ptr<const VariantArray>>();
        const auto rows = static_cast<std::size_t>(array->bounds[0].upper) + 1;
        std::string shown;
        for (std::size_t row = 0; row < rows; ++row) {
            for (std::size_t i = row; i < array->elements.size(); i += rows) {
                shown += (i == row ? "[" : "|") + Shown(array->elements[i]);
            }
            shown += "]";
        }
        return shown;
    }

    static std::string Shown(const Variant& value) {
        return value.Is<AutomationDate>() ? fmt::format("date {}", value.As<AutomationDate>().days)
                                          : ToText(value, {});
    }

    Record record_;
    std::string path_;
    std::vector<std::string> names_; ///< of the members, by number
};

} // namespace

ComPointer<IDispatch> RecordedObject(const Record& record) {
    return ComPointer<IDispatch>::Adopt(std::make_unique<Recorded>(record, "").release());
}

} // namespace qel::test
