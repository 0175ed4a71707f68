// For programs without a screen: run a blocking function while the main thread's event loop keeps going.
#pragma once

#include <QEventLoop>
#include <optional>
#include <stop_token>
#include <utility>

#include "platform/tasks/BackgroundTask.h"

namespace korvane {

/// Runs `work` on a worker and the event loop here until it is done, so that what services post to the main
/// queue arrives meanwhile. A stop requested on `stop` reaches `work`.
/// Main thread only.
/// \return what `work` returned.
/// \throws what `work` threw, with its own type.
template <class T>
T runOnWorker(MainQueue& queue, const std::stop_token& stop, typename BackgroundTask<T>::Work work) {
    QEventLoop loop;
    std::optional<Outcome<T>> outcome;
    BackgroundTask<T> task(queue, std::move(work), [&](Outcome<T> result) {
        outcome.emplace(std::move(result));
        loop.quit();
    });
    const std::stop_callback forward(stop, [&task] { task.requestStop(); });
    loop.exec();
    return outcome->take();
}

}  // namespace korvane
