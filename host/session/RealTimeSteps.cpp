// Time in a scenario. The bundle's GUI timers live on the GUI thread's run loop, which kxhost runs
// only while a scenario waits, in real time or, with "option clock virtual", on a virtual clock that
// runs every timer due within the wait at once, in order:
//
//   wait MS                          runs the run loop for MS milliseconds; timers fire, their
//                                    transmissions are routed and traced as usual
//   expect-sent instance.Pin MIN MAX the pin was sent between MIN and MAX times (inclusive) since the
//                                    last step that was not an observation, for real-time counts that
//                                    need a margin (also spelled expect_sent)
#include <memory>

#include "gui/RunLoop.h"
#include "patch/Registry.h"
#include "session/Session.h"

namespace kxhost {

namespace {

class ClockExtension final : public Extension {
public:
    void started(Session& s) override {
        if (s.patch().options.clock != Clock::Virtual)
            return;
        if (!runloop::VirtualClock::available())
            s.warn("option clock virtual: this platform has no virtual clock; waits take real time");
        clock_ = std::make_unique<runloop::VirtualClock>();
    }

    void wait(int ms) {
        if (clock_)
            clock_->wait(ms);
        else
            runloop::wait(ms);
    }

private:
    std::unique_ptr<runloop::VirtualClock> clock_;
};

// wait MS
Action compileWait(Parser& p, const Line& line) {
    p.arity(line, 2, 2, "wait MS");
    const int ms = p.integer(line, line.tokens[1]);
    if (ms < 0)
        p.fail(line, "wait takes milliseconds, 0 or more");
    return [ms](Session& s) { s.extension<ClockExtension>()->wait(ms); };
}

// expect-sent instance.Pin MIN MAX
Action compileExpectSent(Parser& p, const Line& line) {
    const std::string keyword = line.tokens[0].raw;
    p.arity(line, 4, 4, (keyword + " instance.Pin MIN MAX").c_str());
    const PinRef pin = p.pin(line, line.tokens[1]);
    const int min = p.integer(line, line.tokens[2]);
    const int max = p.integer(line, line.tokens[3]);
    if (min < 0 || max < min)
        p.fail(line, keyword + " needs 0 <= MIN <= MAX");
    const std::string label = p.patch.label(pin);
    const Location where = line.where;
    return [pin, min, max, label, where](Session& s) {
        const int sent = s.sentCount(pin);
        if (sent < min || sent > max)
            s.fail(where, "expectation failed: " + label + " sent " + std::to_string(sent) + " time(s), expected " +
                              std::to_string(min) + " to " + std::to_string(max));
        else
            s.trace("ok " + label + " sent " + std::to_string(sent) + " (" + std::to_string(min) + " to " +
                    std::to_string(max) + ")");
    };
}

// The older spelling stays for the patches that use it.
const bool registered = Extensions::add([] { return std::make_unique<ClockExtension>(); }) &&
                        Steps::add("wait", compileWait) && Steps::add("expect-sent", compileExpectSent, true) &&
                        Steps::add("expect_sent", compileExpectSent, true);

}  // namespace

}  // namespace kxhost
