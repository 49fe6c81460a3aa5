#pragma once

#include <string>

namespace harvlink::simulator {

class ControllerModel;

/// The files on the controller. Built last but for jobs and motion: groups, frames and parameters of `model` may be read
/// in the constructor.
class FileStore {
public:
    explicit FileStore(ControllerModel& model) : model_(&model) {}

    /// Puts a file in place, replacing one of the same name. Used by scene files.
    void Put(std::string const& name, std::string const& content) {
        static_cast<void>(name);
        static_cast<void>(content);
    }

private:
    [[maybe_unused]] ControllerModel* model_;
};

} // namespace harvlink::simulator
