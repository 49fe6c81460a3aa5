#include "recording/read/ControllerTexts.h"

#include <fmt/format.h>

#include "words/text/InputError.h"
#include "words/text/Utf8.h"

namespace harvlink::recording {

namespace {

words::TextEncoding EncodingOf(RecordedController const& controller) {
    try {
        return words::TextEncoding(controller.encoding);
    } catch (words::InputError const& error) {
        throw RecordingError(fmt::format("the texts of {}: {}", controller.name, error.what()));
    }
}

} // namespace

ControllerTexts::ControllerTexts(RecordedController const& controller) : encoding_(EncodingOf(controller)) {}

void ControllerTexts::Restore(Change& change) const {
    for (auto& [place, value] : change.values) {
        auto* const text = std::get_if<std::string>(&value);
        try {
            if (text != nullptr) {
                *text = encoding_.Encode(*text);
            }
        } catch (words::InputError const&) {
            // from a time when the recording had another encoding for this controller
        }
    }
}

std::string ShownText(std::string_view text) {
    return words::IsUtf8(text) ? std::string(text) : words::TextEncoding().Decode(text);
}

} // namespace harvlink::recording
