// Steps about what modules send within one step and about the lives of instances:
//
//   expect-order ITEM [then ITEM ...]       the items happened in this order since the last action step
//                                           (others may lie between them); an ITEM is
//                                             PIN [VALUE] [at SAMPLE]              a transmission
//                                             message INSTANCE to-dsp|to-gui ID [BYTES]
//   expect-message INSTANCE to-dsp|to-gui ID [BYTES]   such a message was sent since the last action step
//   expect-message INSTANCE to-dsp|to-gui none         no message went that way
//   message INSTANCE to-dsp|to-gui ID BYTES  sends raw bytes to a half, as its other half would
//   create INSTANCE, release INSTANCE        makes or releases an instance in the middle of a scenario
#include "patch/Registry.h"
#include "session/Session.h"

namespace kxhost {

namespace {

struct MessageItem {
    std::string instance;
    bool toDsp = false;
    std::optional<int32_t> id;
    std::optional<Bytes> bytes;
};

struct SentItem {
    PinRef pin;
    std::optional<Value> value;
    int64_t at = -1;
};

struct Item {
    std::optional<SentItem> sent;
    std::optional<MessageItem> message;
    std::string text;  // as written, for failures
};

bool matches(const Item& item, const Session::Traffic& t) {
    if (item.sent) {
        const SentItem& i = *item.sent;
        return !t.message && t.pin == i.pin && (!i.value || t.value == *i.value) && (i.at < 0 || t.at == i.at);
    }
    const MessageItem& m = *item.message;
    return t.message && t.instance == m.instance && t.toDsp == m.toDsp && (!m.id || t.id == *m.id) &&
           (!m.bytes || t.bytes == *m.bytes);
}

std::string describe(const Session& s, const Session::Traffic& t) {
    if (t.message)
        return t.instance + ": message to " + (t.toDsp ? "dsp, " : "gui, ") +
               Session::describeMessage(t.id, static_cast<int32_t>(t.bytes.size()), t.bytes.data());
    return s.patch().label(t.pin) + " -> " + t.value.format() + (t.at ? " at " + std::to_string(*t.at) : "");
}

// What a step's traffic was, for a failure message: at most 20 entries.
std::string listing(const Session& s) {
    const auto& traffic = s.traffic();
    if (traffic.empty())
        return "nothing was sent";
    std::string out = "sent:";
    for (size_t i = 0; i < traffic.size() && i < 20; ++i)
        out += (i ? "; " : " ") + describe(s, traffic[i]);
    if (traffic.size() > 20)
        out += "; ... (" + std::to_string(traffic.size()) + " in all)";
    return out;
}

void checkInstance(Parser& p, const Line& line, const Token& token) {
    if (!p.patch.instance(token.raw))
        p.fail(line, "no instance named '" + token.raw + "'");
}

bool direction(Parser& p, const Line& line, const Token& token) {
    if (token.raw != "to-dsp" && token.raw != "to-gui")
        p.fail(line, "a message goes to-dsp or to-gui, not '" + token.raw + "'");
    return token.raw == "to-dsp";
}

// message INSTANCE to-dsp|to-gui [ID [BYTES]] from tokens [first, end): the id and bytes optional.
MessageItem messageItem(Parser& p, const Line& line, size_t first, size_t end) {
    if (end - first < 2 || end - first > 4)
        p.fail(line, "a message is written INSTANCE to-dsp|to-gui ID [BYTES]");
    MessageItem m;
    checkInstance(p, line, line.tokens[first]);
    m.instance = line.tokens[first].raw;
    m.toDsp = direction(p, line, line.tokens[first + 1]);
    const InstanceDecl* decl = p.patch.instance(m.instance);
    if (m.toDsp ? !decl->dsp : !decl->gui)
        p.fail(line, m.instance + " has no " + (m.toDsp ? "dsp" : "gui") + " half to receive messages");
    if (end - first > 2)
        m.id = p.integer(line, line.tokens[first + 2]);
    if (end - first > 3)
        m.bytes = p.value(line, line.tokens[first + 3], Datatype::Blob).blob();
    return m;
}

std::string joined(const Line& line, size_t first, size_t end) {
    std::string text;
    for (size_t i = first; i < end; ++i)
        text += (i > first ? " " : "") + line.tokens[i].raw;
    return text;
}

// expect-order ITEM [then ITEM ...]
Action compileExpectOrder(Parser& p, const Line& line) {
    p.arity(line, 2, -1, "expect-order ITEM [then ITEM ...]");
    p.patch.keepsTraffic = true;
    std::vector<Item> items;
    size_t first = 1;
    while (first <= line.tokens.size()) {
        size_t end = first;
        while (end < line.tokens.size() && line.tokens[end].raw != "then")
            ++end;
        if (end == first)
            p.fail(line, "expect-order needs an item before and after each 'then'");
        Item item;
        item.text = joined(line, first, end);
        if (line.tokens[first].raw == "message") {
            item.message = messageItem(p, line, first + 1, end);
        } else {
            SentItem sent;
            sent.pin = p.pin(line, line.tokens[first]);
            size_t next = first + 1;
            if (next < end && line.tokens[next].raw != "at")
                sent.value = p.value(line, line.tokens[next++], p.patch.pin(sent.pin)->type);
            if (next < end) {
                if (line.tokens[next].raw != "at" || next + 2 != end)
                    p.fail(line, "an item is written PIN [VALUE] [at SAMPLE], not '" + item.text + "'");
                if (sent.pin.side != Side::Dsp)
                    p.fail(line, "'at' is for dsp pins, and " + p.patch.label(sent.pin) + " is not one");
                sent.at = p.integer(line, line.tokens[next + 1]);
                if (sent.at < 0)
                    p.fail(line, "'at' takes a sample offset of 0 or more");
            }
            item.sent = sent;
        }
        items.push_back(std::move(item));
        first = end + 1;
    }
    const Location where = line.where;
    return [items, where](Session& s) {
        const auto& traffic = s.traffic();
        size_t from = 0;
        for (size_t k = 0; k < items.size(); ++k) {
            size_t i = from;
            while (i < traffic.size() && !matches(items[k], traffic[i]))
                ++i;
            if (i == traffic.size()) {
                s.fail(where, "expectation failed: " + items[k].text +
                                  (k ? " after " + items[k - 1].text : std::string()) + " did not happen; " +
                                  listing(s));
                return;
            }
            from = i + 1;
        }
        s.trace("ok in order: " + std::to_string(items.size()) + " item(s)");
    };
}

// expect-message INSTANCE to-dsp|to-gui ID [BYTES] | expect-message INSTANCE to-dsp|to-gui none
Action compileExpectMessage(Parser& p, const Line& line) {
    p.arity(line, 4, 5, "expect-message INSTANCE to-dsp|to-gui ID [BYTES] | ... none");
    p.patch.keepsTraffic = true;
    const bool none = line.tokens[3].raw == "none";
    if (none)
        p.arity(line, 4, 4, "expect-message INSTANCE to-dsp|to-gui none");
    Item item;
    item.message = messageItem(p, line, 1, none ? 3 : line.tokens.size());
    item.text = joined(line, 1, line.tokens.size());
    const Location where = line.where;
    return [item, none, where](Session& s) {
        bool found = false;
        for (const auto& t : s.traffic())
            found = found || matches(item, t);
        if (found == none)
            s.fail(where, "expectation failed: " + std::string(none ? "a message " : "message ") + item.text +
                              (none ? " was sent; " : " was not sent; ") + listing(s));
        else
            s.trace("ok message " + item.text);
    };
}

// message INSTANCE to-dsp|to-gui ID BYTES
Action compileMessage(Parser& p, const Line& line) {
    p.arity(line, 5, 5, "message INSTANCE to-dsp|to-gui ID BYTES");
    const MessageItem m = messageItem(p, line, 1, 5);
    const Location where = line.where;
    return [m, where](Session& s) {
        Instance* inst = s.instance(m.instance);
        if (!inst || !inst->created) {
            s.fail(where, "message: " + m.instance + " does not exist now");
            return;
        }
        const Bytes& b = *m.bytes;
        const auto size = static_cast<int32_t>(b.size());
        if (m.toDsp)
            s.messageToAudio(*inst, *m.id, size, b.data());
        else
            s.messageToGui(*inst, *m.id, size, b.data());
    };
}

Action compileLifetime(Parser& p, const Line& line, bool create) {
    p.arity(line, 2, 2, create ? "create INSTANCE" : "release INSTANCE");
    checkInstance(p, line, line.tokens[1]);
    const std::string name = line.tokens[1].raw;
    const Location where = line.where;
    return [name, create, where](Session& s) {
        Instance* inst = s.instance(name);
        if (create == inst->created) {
            s.fail(where, name + (create ? " exists already: release it first" : " does not exist now"));
            return;
        }
        if (create)
            s.create(*inst);
        else
            s.release(*inst);
        s.trace(std::string(create ? "created " : "released ") + name);
    };
}

Action compileCreate(Parser& p, const Line& line) { return compileLifetime(p, line, true); }
Action compileRelease(Parser& p, const Line& line) { return compileLifetime(p, line, false); }

const bool registered = Steps::add("expect-order", compileExpectOrder, true) &&
                        Steps::add("expect-message", compileExpectMessage, true) &&
                        Steps::add("message", compileMessage) && Steps::add("create", compileCreate) &&
                        Steps::add("release", compileRelease);

}  // namespace

}  // namespace kxhost
