#include "VeltoKit/translation/TranslationProgress.h"

namespace velto {

double TranslationProgress::fraction() const {
    return total == 0 ? 0.0 : static_cast<double>(done) / static_cast<double>(total);
}

} // namespace velto
