// How a note's asynchronous chains hold on to what they need between the steps of a service
// round trip.
//
// A chain that has begun runs to its end. Each of its steps holds the work it belongs to (a
// submission, the note's sync with its editing session) by shared ownership, so that the writes,
// the deletions of emptied entries and of superseded keys, the "show_line_num" rewrite with its
// conflict retries, the tips message and the caller's completion all happen even when the screen
// and its data provider are gone meanwhile: a member who presses Send and leaves at once still
// has their line written and reported.
//
// Only what would reach the screen holds the provider weakly and is dropped once it is gone: the
// delegate's calls and the provider's Qt signals.
#pragma once

#include <QPointer>
#include <memory>
#include <utility>

template<typename Work, typename Owner = QObject> class ZIQGroupNoteGuard
{
public:
    explicit ZIQGroupNoteGuard(std::shared_ptr<Work> work, Owner *owner = nullptr)
        : m_work(std::move(work))
        , m_owner(owner)
    {
    }

    /// A step of the chain: `step(work, answer...)` runs whenever the answer comes.
    template<typename Step> auto step(Step step) const
    {
        return [work = m_work, step = std::move(step)](
                   auto &&...answer) { step(*work, std::forward<decltype(answer)>(answer)...); };
    }

    /// A call for the screen: `call(owner, answer...)` runs only while the owner lives.
    template<typename Call> auto toOwner(Call call) const
    {
        return [owner = m_owner, call = std::move(call)](auto &&...answer) {
            if (owner)
                call(*owner, std::forward<decltype(answer)>(answer)...);
        };
    }

private:
    std::shared_ptr<Work> m_work;
    QPointer<Owner> m_owner;
};
