#include "host/suite/Fault.h"

#include "host/text/Printable.h"

#include <fmt/format.h>

namespace vant::host {

std::string Describe(const Fault& fault) {
    switch (fault.kind) {
    case Fault::Kind::Call:
        return fault.subject + " fails";
    case Fault::Kind::Lost:
        return fmt::format("parameter {} is lost", Printable(fault.subject));
    default:
        return fmt::format("writes of parameter {} are refused", Printable(fault.subject));
    }
}

std::string DescribeMoment(const Fault& fault) {
    const std::string step = fault.step == "finally" ? "the clean-up" : "step " + Quoted(fault.step);
    switch (fault.kind) {
    case Fault::Kind::Call:
        return fmt::format("call {} by {} in {}", fault.number, Quoted(fault.command), step);
    case Fault::Kind::Lost:
        return fmt::format("from {} on", step);
    default:
        return "from the beginning on";
    }
}

Json ToJson(const Fault& fault) {
    return {{"kind", static_cast<int>(fault.kind)},
            {"subject", fault.subject},
            {"thread", fault.thread},
            {"command", fault.command},
            {"number", fault.number},
            {"from", fault.from},
            {"step", fault.step},
            {"place", fault.place},
            {"unwritten", fault.unwritten}};
}

Fault FaultOf(const Json& json) {
    return {.kind = static_cast<Fault::Kind>(json.at("kind").get<int>()),
            .subject = json.at("subject"),
            .thread = json.at("thread"),
            .command = json.at("command"),
            .number = json.at("number"),
            .from = json.at("from"),
            .step = json.at("step"),
            .place = json.at("place"),
            .unwritten = json.at("unwritten")};
}

} // namespace vant::host
