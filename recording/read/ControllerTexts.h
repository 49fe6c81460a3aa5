#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "recording/read/Recording.h"
#include "words/text/Encoding.h"

namespace harvlink::recording {

/// Gives the texts of a controller back as it sent them.
class ControllerTexts {
public:
    /// Throws RecordingError for an encoding that this program does not know.
    explicit ControllerTexts(RecordedController const& controller);

    /// Puts the bytes of the controller in place of the texts of the change.
    void Restore(Change& change) const;

private:
    words::TextEncoding encoding_;
};

/// A text as programs can show it. The first recordings have the bytes of the controller, which may be anything.
std::string ShownText(std::string_view text);

} // namespace harvlink::recording
