#include "tests/platform/dialog/win32/ShownDialog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace qel::test {

namespace {

/// Answers messages of a person who still looks at the closed dialog.
void AnswerMessagesUntil(const std::atomic<bool>& hasLeft) {
    while (!hasLeft) {
        MSG message = {};
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            ::DispatchMessageW(&message);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

} // namespace

void EventLog::OnLoad() {
    told.emplace_back("load");
    if (onLoad) {
        onLoad();
    }
}

void EventLog::OnClick(std::string_view control) {
    told.push_back("click " + std::string(control));
    if (onClick) {
        onClick(control);
    }
    if (control == "CmdOK" || control == "CmdCancel") {
        dialog->Hide();
    }
}

void EventLog::OnChange(std::string_view control) { told.push_back("change " + std::string(control)); }

bool EventLog::OnLeave(std::string_view control) {
    told.push_back("leave " + std::string(control));
    if (onLeave) {
        onLeave(control);
    }
    return pressCounts;
}

void ShowTo(Dialog& dialog, const FormDesign& design, const std::function<void(const Person&)>& person) {
    std::atomic<bool> isGone = false;
    std::atomic<bool> hasLeft = false;
    std::string disappointment;
    std::thread acting([&] {
        try {
            person(Person(design));
        } catch (const std::exception& error) {
            disappointment = error.what();
            while (!isGone) { // a message box may be open, so try again
                try {
                    Person(design).UseCloseBox();
                } catch (const Disappointment&) {
                    break;
                }
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            }
        }
        hasLeft = true;
    });
    std::exception_ptr failure;
    try {
        dialog.ShowModal();
    } catch (...) {
        failure = std::current_exception();
    }
    isGone = true;
    AnswerMessagesUntil(hasLeft);
    acting.join();
    EXPECT_EQ(disappointment, "");
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace qel::test
