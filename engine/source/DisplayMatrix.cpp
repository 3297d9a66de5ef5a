#include "DisplayMatrix.h"

#include <array>
#include <cstdlib>
#include <cstring>

namespace velmora {
namespace {

using Matrix = std::array<std::int32_t, 9>;

bool readMatrix(const AVStream& stream, Matrix& matrix) {
    std::size_t size = 0;
    const std::uint8_t* data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (data == nullptr || size < sizeof(matrix)) {
        return false;
    }
    std::memcpy(matrix.data(), data, sizeof(matrix));
    return true;
}

} // namespace

/// A place (x, y) of the stored picture is shown at (a x + c y, b x + d y).
DisplayTurn displayTurnOf(const AVStream& stream) {
    Matrix matrix{};
    if (!readMatrix(stream, matrix)) {
        return {};
    }
    const std::int64_t a = matrix[0];
    const std::int64_t b = matrix[1];
    const std::int64_t c = matrix[3];
    const std::int64_t d = matrix[4];
    DisplayTurn turn;
    turn.swapsSides = std::llabs(b) + std::llabs(c) > std::llabs(a) + std::llabs(d);
    turn.flipsAcross = turn.swapsSides ? c < 0 : a < 0;
    turn.flipsDown = turn.swapsSides ? b < 0 : d < 0;
    return turn;
}

int DisplayTurn::quarterTurns() const {
    const bool across = isMirrored() ? !flipsAcross : flipsAcross;
    if (swapsSides) {
        return across ? 1 : 3;
    }
    return across ? 2 : 0;
}

} // namespace velmora
