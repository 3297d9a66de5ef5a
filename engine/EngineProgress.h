#pragma once

#include "ConversionEngine.h"
#include "RunProgress.h"

namespace velmora {

/// Puts what a run tells into the engine's fields, as others read them meanwhile.
class EngineProgress final : public RunProgress {
public:
    /// All inputs are pending, and the first one is worked on.
    EngineProgress(ConversionEngine& engine, std::int32_t inputCount);

    void inputIs(std::size_t index) override;
    void stateIs(std::size_t index, InputState state) override;
    void percentIs(int percent) override;
    void startIs(std::size_t index, double seconds) override;
    void spanIs(std::size_t index, double seconds) override;
    void frameRateIs(double rate) override;

    /// The run is over; what was still pending has failed.
    void failPending();

private:
    ConversionEngine& engine_;
    const std::size_t inputCount_;
};

} // namespace velmora
