#include "records/tkInternedText.h"

#include <deque>
#include <unordered_map>

namespace {

struct Texts {
    // A deque never moves what it holds, so the references handed out stay valid.
    std::deque<std::string> byNumber;
    std::unordered_map<std::string_view, uint32_t> numbers;
};

Texts& texts() {
    static Texts* kept = new Texts();  // never freed: references to it live to the end
    return *kept;
}

}  // namespace

uint32_t internText(std::string_view text) {
    Texts& all = texts();
    if (const auto found = all.numbers.find(text); found != all.numbers.end()) {
        return found->second;
    }
    all.byNumber.emplace_back(text);
    const auto number = static_cast<uint32_t>(all.byNumber.size());
    all.numbers.emplace(all.byNumber.back(), number);
    return number;
}

const std::string& internedText(uint32_t number) {
    return texts().byNumber.at(number - 1);
}
