#include "wire/AttachedControlGroup.h"

#include "wire/HelperFunction.h"

namespace harvlink {

AttachedControlGroup::AttachedControlGroup(std::string const& text) {
    bool valid = false;
    ControlGroupId const group = HelperFunction::ControlGroupFromString(text, valid);
    Id = valid ? group : ControlGroupId{};
}

} // namespace harvlink
