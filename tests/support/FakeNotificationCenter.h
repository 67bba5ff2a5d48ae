// A notification server in memory: what it shows, and a user who presses its buttons.
#pragma once

#include "platform/NotificationCenter.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quorva {

class FakeNotificationCenter final : public NotificationCenter {
public:
    std::vector<NotificationCategory> categories;
    std::vector<NotificationRequest> posted;                ///< all, in their order
    std::vector<NotificationRequest> delivered;             ///< those that are shown
    std::optional<NotificationAuthorization> authorization; ///< nothing: as `state` implies
    std::optional<std::string> requestError;                ///< nothing: as `state` implies
    int requests = 0;
    NotificationService state{NotificationService::State::present, true};

    void press(std::string_view action, const std::string& identifier) {
        responses.call({std::string(action), identifier});
    }
    void become(NotificationService next) {
        if (std::exchange(state, next) == next)
            return;
        if (state.state == NotificationService::State::absent)
            delivered.clear(); // its server has ended
        serviceChanges.call();
        if (isPresent())
            for (auto& request : std::exchange(waiting, {}))
                show(std::move(request));
    }

    void setCategories(std::vector<NotificationCategory> next) override {
        categories = std::move(next);
    }
    void fetchAuthorization(std::function<void(NotificationAuthorization)> done) override {
        done(authorization.value_or(isPresent() ? NotificationAuthorization::authorized
                                                : NotificationAuthorization::notDetermined));
    }
    void requestAuthorization(std::function<void(std::optional<std::string>)> done) override {
        ++requests;
        done(requestError || isPresent() ? requestError : "No program shows notifications.");
    }
    void post(NotificationRequest request) override {
        posted.push_back(request);
        drop(waiting, request.identifier);
        if (isPresent())
            show(std::move(request));
        else
            waiting.push_back(std::move(request));
    }
    void removeDelivered(const std::string& identifier) override {
        drop(waiting, identifier);
        drop(delivered, identifier);
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
    [[nodiscard]] bool isPresent() const {
        return state.state == NotificationService::State::present;
    }
    void show(NotificationRequest request) {
        drop(delivered, request.identifier);
        delivered.push_back(std::move(request));
    }
    static void drop(std::vector<NotificationRequest>& requests, const std::string& identifier) {
        std::erase_if(requests,
                      [&](const auto& request) { return request.identifier == identifier; });
    }

    std::vector<NotificationRequest> waiting; ///< for somebody to show them
    CallbackList<const NotificationResponse&> responses;
    CallbackList<> serviceChanges;
};

} // namespace quorva
