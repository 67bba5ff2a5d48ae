// A notification server in memory: what it shows, and a user who presses its buttons.
#pragma once

#include "platform/NotificationCenter.h"

#include <algorithm>
#include <vector>

namespace quorva {

class FakeNotificationCenter final : public NotificationCenter {
public:
    std::vector<NotificationCategory> categories;
    std::vector<NotificationRequest> posted;    ///< all, in their order
    std::vector<NotificationRequest> delivered; ///< that are shown
    NotificationAuthorization authorization = NotificationAuthorization::authorized;
    std::optional<std::string> requestError;
    int requests = 0;
    NotificationService state{NotificationService::State::present, true};
    CallbackList<> serviceChanges;

    void press(std::string_view action, const std::string& identifier) {
        responses.call({std::string(action), identifier});
    }
    void become(NotificationService next) {
        state = next;
        serviceChanges.call();
    }

    void setCategories(std::vector<NotificationCategory> next) override {
        categories = std::move(next);
    }
    void fetchAuthorization(std::function<void(NotificationAuthorization)> done) override {
        done(authorization);
    }
    void requestAuthorization(std::function<void(std::optional<std::string>)> done) override {
        ++requests;
        done(requestError);
    }
    void post(NotificationRequest request) override {
        removeDelivered(request.identifier);
        posted.push_back(request);
        delivered.push_back(std::move(request));
    }
    void removeDelivered(const std::string& identifier) override {
        std::erase_if(delivered,
                      [&](const auto& request) { return request.identifier == identifier; });
    }
    [[nodiscard]] Subscription
    onResponse(std::function<void(const NotificationResponse&)> callback) override {
        return responses.add(std::move(callback));
    }
    [[nodiscard]] NotificationService service() const override { return state; }
    [[nodiscard]] Subscription onServiceChange(Task callback) override {
        return serviceChanges.add(std::move(callback));
    }

private:
    CallbackList<const NotificationResponse&> responses;
};

} // namespace quorva
