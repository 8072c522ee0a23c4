// A person as a separate program: acts by the lines of a file and records what the dialog shows.
// dialog_person function|name STEPS SEEN

#include "tests/platform/dialog/win32/Person.h"
#include "wizard/FunctionFormDesign.h"
#include "wizard/NameFormDesign.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <vector>

namespace qel::test {
namespace {

using Words = std::vector<std::string>;

Words SplitAtTabs(const std::string& line) {
    Words words(1);
    for (const char c : line) {
        if (c == '\t') {
            words.emplace_back();
        } else {
            words.back() += c;
        }
    }
    return words;
}

std::string OnOneLine(const std::string& text) {
    std::string line;
    for (const char c : text) {
        if (c == '\n') {
            line += '|';
        } else if (c != '\r') {
            line += c;
        }
    }
    return line;
}

WORD KeyNamed(const std::string& name) {
    static const std::map<std::string, WORD> keys = {
        {"enter", VK_RETURN}, {"esc", VK_ESCAPE}, {"tab", VK_TAB}, {"down", VK_DOWN}};
    return keys.at(name);
}

/// Waits until the file is deleted, so that a picture can be taken.
void HoldStill(const std::string& file) {
    std::ofstream(file) << "ready";
    Person::WaitUntil("the picture " + file, [&] { return !std::filesystem::exists(file); });
}

/// The time since the last reading.
std::string ReadClock(const std::string& what) {
    using Clock = std::chrono::steady_clock;
    static Clock::time_point last = Clock::now();
    const Clock::time_point now = Clock::now();
    const auto spent = std::chrono::duration_cast<std::chrono::milliseconds>(now - last);
    last = now;
    return "clock\t" + what + "\t" + std::to_string(spent.count());
}

std::string Act(const Person& person, const Words& step) {
    const std::string& what = step.at(0);
    if (what == "type") {
        person.Type(step.at(1), step.at(2));
    } else if (what == "choose") {
        person.Choose(step.at(1), step.at(2));
    } else if (what == "click") {
        person.Click(step.at(1));
    } else if (what == "key") {
        person.Key(step.at(1), KeyNamed(step.at(2)));
    } else if (what == "expect") {
        person.Expect(step.at(1), step.at(2));
    } else if (what == "read") {
        return step.at(1) + "\t" + OnOneLine(person.ReadWhenShown(step.at(1)));
    } else if (what == "file") {
        person.ChooseFile(step.at(1));
    } else if (what == "close") {
        person.UseCloseBox();
    } else if (what == "gone") {
        person.ExpectGone();
    } else if (what == "clock") {
        return ReadClock(step.at(1));
    } else {
        throw Disappointment("Unknown step '" + what + "'");
    }
    return {};
}

int Run(const std::string& form, const std::string& stepsFile, const std::string& seenFile) {
    std::ofstream seen(seenFile, std::ios::binary);
    std::string line;
    try {
        std::optional<Person> person;
        std::ifstream steps(stepsFile, std::ios::binary);
        while (std::getline(steps, line)) {
            const Words step = SplitAtTabs(line);
            std::string sight;
            if (step.at(0) == "answer") { // a box may appear before the dialog
                sight = "box\t" + OnOneLine(Person::Answer(std::stoi(step.at(1))));
            } else if (step.at(0) == "hold") {
                HoldStill(step.at(1));
            } else {
                if (!person) {
                    person.emplace(form == "name" ? NameFormDesign() : FunctionFormDesign());
                }
                sight = Act(*person, step);
            }
            if (!sight.empty()) {
                seen << sight << std::endl;
            }
        }
        seen << "done" << std::endl;
        return 0;
    } catch (const std::exception& error) {
        seen << "at '" << line << "': " << error.what() << "; a box says '" << OnOneLine(Person::TextOfBox())
             << "'" << std::endl;
        return 1;
    }
}

} // namespace
} // namespace qel::test

int main(int count, char** arguments) {
    if (count != 4) {
        std::cerr << "dialog_person function|name STEPS SEEN\n";
        return 2;
    }
    std::cout << "dialog_person" << std::endl; // shows that the program has started
    return qel::test::Run(arguments[1], arguments[2], arguments[3]);
}
