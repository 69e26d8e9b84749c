#include "common/shared_state.h"

namespace kyt {

SharedState& shared() {
    static SharedState state;
    return state;
}

}  // namespace kyt
