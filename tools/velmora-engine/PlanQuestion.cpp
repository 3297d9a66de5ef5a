#include "PlanQuestion.h"

#include "ConversionEngine.h"
#include "MediaOperations.h"
#include "ParseNumber.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <iostream>

std::optional<PlanQuestion> PlanQuestion::of(std::span<char*> arguments) {
    const bool isComplete = arguments.size() == 3 || arguments.size() == 4;
    const auto start = isComplete ? parseNumber<double>(arguments[1]) : std::nullopt;
    const auto end = isComplete ? parseNumber<double>(arguments[2]) : std::nullopt;
    if (!start || !end) {
        return std::nullopt;
    }
    PlanQuestion question;
    question.path_ = arguments[0];
    question.window_ = {milliseconds(*start), milliseconds(*end)};
    question.output_ = arguments[arguments.size() == 4 ? 3 : 0];
    return question;
}

int PlanQuestion::answer() const {
    const auto before = std::chrono::steady_clock::now();
    const velmora::CopyForecast forecast = velmora::mediaOperations().forecastCopy(
        path_, window_, output_, velmora::ConversionEngine::instance().stopRequested);
    const auto taken = std::chrono::steady_clock::now() - before;
    const bool isPossible = forecast.refusal.empty();
    nlohmann::json result{
        {"possible", isPossible},
        {"milliseconds", std::chrono::duration<double, std::milli>(taken).count()}};
    if (isPossible) {
        result["encoded"] = forecast.encoded;
        result["pictures"] = forecast.pictures;
        result["estimated"] = forecast.isEstimate;
    } else {
        result["refusal"] = forecast.refusal;
    }
    std::cout << result.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    return isPossible ? 0 : 1;
}
