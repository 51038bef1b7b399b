// Support split: what a share is asked for.
#pragma once

/// Modes of get_split_factor().
enum SplitMode {
    kStoredResult = 1,   ///< another joint's stored result
    kSiteLoad = 2,       ///< a load on a site of the stop segment
    kSegmentWeight = 3   ///< the stop segment's weight
};
