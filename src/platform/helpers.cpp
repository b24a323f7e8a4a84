#include "platform/helpers.h"

#include "platform/cores.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <exception>
#include <thread>

namespace tarnwick {

int Helpers::FreeCores() {
    return std::clamp(UsableCores() - 1, 0, kMost);
}

void StartedHelpers::Run(const Work& work) {
    std::array<std::jthread, kMost> threads;
    for (int i = 0; i < std::min(Count(), kMost); ++i) {
        try {
            threads[static_cast<std::size_t>(i)] = std::jthread([&work] { work(false); });
        } catch (const std::exception&) { break; } // no thread, or no memory for one
    }
    work(true);
}

void IdleHelpers::Run(const Work& work) {
    Offer offer{.work = &work};
    {
        const std::lock_guard guard(lock_);
        offer.next = offers_;
        offers_ = &offer;
        changed_.notify_all();
    }
    work(true);
    std::unique_lock guard(lock_);
    Close(&offer);
    changed_.wait(guard, [&offer] { return offer.inside == 0; });
}

void IdleHelpers::Begin() {
    const std::lock_guard guard(lock_);
    ++busy_;
}

void IdleHelpers::End() {
    const std::lock_guard guard(lock_);
    if (--busy_ == 0) { changed_.notify_all(); }
}

IdleHelpers::Outcome IdleHelpers::Help(int milliseconds) {
    std::unique_lock guard(lock_);
    Offer* offer = nullptr;
    const auto isOver = [&] { return (offer = Open()) != nullptr || busy_ == 0; };
    if (milliseconds == 0) {
        changed_.wait(guard, isOver);
    } else if (!changed_.wait_for(guard, std::chrono::milliseconds(milliseconds), isOver)) {
        return Outcome::kTimeOver;
    }
    if (offer == nullptr) { return Outcome::kNobodyBusy; }
    ++offer->joined;
    ++offer->inside;
    guard.unlock();
    (*offer->work)(false);
    guard.lock();
    Close(offer); // a helper leaves when nothing is left to do
    if (--offer->inside == 0) { changed_.notify_all(); }
    return Outcome::kHelped;
}

// The first offer that one more helper can join; null for none.
IdleHelpers::Offer* IdleHelpers::Open() {
    Offer* offer = offers_;
    while (offer != nullptr && offer->joined >= Count()) { offer = offer->next; }
    return offer;
}

// From now on nobody can join the offer.
void IdleHelpers::Close(const Offer* offer) {
    for (Offer** link = &offers_; *link != nullptr; link = &(*link)->next) {
        if (*link == offer) {
            *link = offer->next;
            return;
        }
    }
}

} // namespace tarnwick
