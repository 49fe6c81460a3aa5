#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <vector>

#include "gateway/http/Api.h"
#include "gateway/http/Exchange.h"
#include "gateway/http/Worker.h"

namespace harvlink::gateway {

/// Has requests answered on other threads: those that read the disk on one, all others on another one, so that they need not wait.
/// What several clients ask for at the same time is worked out once.
class AnswerQueue {
public:
    struct Answered {
        std::vector<std::shared_ptr<Exchange>> exchanges; ///< all get the same answer
        std::shared_ptr<Response> response;
    };

    /// `wake` is called on another thread when there is something to take.
    AnswerQueue(Api const& api, std::function<void()> wake) : api_(api), wake_(std::move(wake)) {}

    /// False if too much waits.
    bool Put(std::shared_ptr<Exchange> const& exchange);

    std::vector<Answered> TakeAll();

private:
    void Answer(std::string const& key, std::stop_token const& stop);

    Api const& api_;
    std::function<void()> wake_;
    std::mutex mutex_;
    std::map<std::string, std::vector<std::shared_ptr<Exchange>>> waiting_; ///< that no worker has begun
    std::vector<Answered> answers_;
    std::uint64_t unique_ = 0; ///< of the thread that puts
    Worker quick_; ///< after all that it uses, as the next one
    Worker slow_;
};

} // namespace harvlink::gateway
