// Real time in a scenario. The bundle's GUI timers live on the GUI thread's run loop, which kxhost runs
// only while a scenario waits:
//
//   wait MS                          runs the run loop for MS milliseconds; timers fire, their
//                                    transmissions are routed and traced as usual
//   expect_sent instance.Pin MIN MAX the pin was sent between MIN and MAX times (inclusive) since the
//                                    last step that was not an observation, for real-time counts that
//                                    need a margin
#include "gui/RunLoop.h"
#include "patch/Registry.h"
#include "session/Session.h"

namespace kxhost {

namespace {

// wait MS
Action compileWait(Parser& p, const Line& line) {
    p.arity(line, 2, 2, "wait MS");
    const int ms = p.integer(line, line.tokens[1]);
    if (ms < 0)
        p.fail(line, "wait takes milliseconds, 0 or more");
    return [ms](Session&) { runloop::wait(ms); };
}

// expect_sent instance.Pin MIN MAX
Action compileExpectSent(Parser& p, const Line& line) {
    p.arity(line, 4, 4, "expect_sent instance.Pin MIN MAX");
    const PinRef pin = p.pin(line, line.tokens[1]);
    const int min = p.integer(line, line.tokens[2]);
    const int max = p.integer(line, line.tokens[3]);
    if (min < 0 || max < min)
        p.fail(line, "expect_sent needs 0 <= MIN <= MAX");
    const std::string label = p.patch.label(pin);
    const Location where = line.where;
    return [pin, min, max, label, where](Session& s) {
        const int sent = s.sentCount(pin);
        if (sent < min || sent > max)
            s.fail(where, "expectation failed: " + label + " sent " + std::to_string(sent) + " time(s), expected " +
                              std::to_string(min) + " to " + std::to_string(max));
    };
}

const bool registered = Steps::add("wait", compileWait) && Steps::add("expect_sent", compileExpectSent, true);

}  // namespace

}  // namespace kxhost
