// Support: which strategy a computation came down to, and what share each foot, knee or hand carries.
#pragma once

#include "qmStaticStrength.h"

#include <optional>

/// Shares in percent, by qcSide; absent where the strategy has no such support or the share is no number.
struct Support {
    qmStaticStrength::Strategy effective = qmStaticStrength::TwoFeet;
    std::optional<float> foot[2], knee[2], hand[2];
};

/// Reads the support of the last computation. Walking comes down to the foot whose knee is bent less,
/// or to both feet; for two feet the shares follow from the feet's distances from the balance point
/// (half and half when walking). What the ankles carry is a result of its own: see the ankle joints.
Support readSupport(qmStaticStrength& analysis);
