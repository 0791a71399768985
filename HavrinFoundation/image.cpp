// SPDX-License-Identifier: Apache-2.0
// The table of contents: what the library adds to which class, in the order of the rooms, and the one thing that runs when
// it is loaded.
#include <HavrinFoundation/image.h>

#include <HavrinFoundation/frame/identity.h>
#include <HavrinFoundation/frame/main_queue_mark.h>

namespace havrin {

inline namespace platform {
extern const Category kKeyValueCoding;
extern const Category kDictionaryKeys;
extern const Category kMutableDictionaryKeys;
extern const Category kKeyValueObserving;
extern const Category kDependentKeys;
}  // namespace platform

extern const Category kProcessTestFlag;
extern const Category kRateLimits;
extern const Category kResponderObservations;
extern const Category kArrayBlocks;
extern const Category kArrayHelpers;
extern const Category kMutableArrayHelpers;
extern const Category kMutableSetHelpers;
extern const Category kSetBlocks;
extern const Category kOrderedSetBlocks;
extern const Category kCasts;
extern const Category kInsecureUnarchiving;
extern const Category kFriendlyNumbers;
extern const Category kBase36Numbers;
extern const Category kBase36Strings;
extern const Category kHexText;
extern const Category kStringHelpers;
extern const Category kNamedCharacterSets;
extern const Category kAttributedStrings;
extern const Category kDateArithmetic;
extern const Category kSharedFormatter;
extern const Category kZeroUuid;
extern const Category kColourCodes;
extern const Category kColourArithmetic;
extern const Category kAppIdentity;

extern const ConstantString kKeyPathText;

namespace {

const ConstantString* const kStrings[] = {
    &kKeyPathText,  // kKeyValueObservationKeyPath
};

const Category* const kCategories[] = {
    // the layer
    &kKeyValueCoding,         // NSObject(KeyValueCoding)
    &kDictionaryKeys,         // NSDictionary(KeyValueCoding)
    &kMutableDictionaryKeys,  // NSMutableDictionary(KeyValueCoding)
    &kKeyValueObserving,      // NSObject(KeyValueObserving)
    &kDependentKeys,          // NSObject(DependentKeys)
    // frame
    &kProcessTestFlag,  // NSProcessInfo(HavrinFoundation)
    &kRateLimits,       // NSObject(Helpers)
    // observation
    &kResponderObservations,  // UIResponder(KeyValueObservation)
    // collections
    &kArrayBlocks,          // NSArray(Blocks)
    &kSetBlocks,            // NSSet(HavrinFoundation)
    &kOrderedSetBlocks,     // NSOrderedSet(HavrinFoundation)
    &kArrayHelpers,         // NSArray(HavrinFoundation)
    &kMutableSetHelpers,    // NSMutableSet(Helpers)
    &kMutableArrayHelpers,  // NSMutableArray(Helpers)
    // runtime
    &kCasts,                // NSObject(Cast)
    &kInsecureUnarchiving,  // NSKeyedUnarchiver(HavrinFoundation)
    // text
    &kFriendlyNumbers,     // NSString(HavrinFoundation)
    &kBase36Numbers,       // NSNumber(HavrinFoundation)
    &kBase36Strings,       // NSString(HavrinFoundation)
    &kHexText,             // NSData(HavrinFoundation)
    &kStringHelpers,       // NSString(HavrinFoundation)
    &kNamedCharacterSets,  // NSCharacterSet(HavrinFoundation)
    &kAttributedStrings,   // NSAttributedString(HavrinFoundation)
    // dates
    &kDateArithmetic,   // NSDate(HavrinFoundation)
    &kSharedFormatter,  // NSDateFormatter(HavrinFoundation)
    &kZeroUuid,         // NSUUID(HavrinFoundation)
    // colours
    &kColourCodes,       // UIColor(HavrinFoundation)
    &kColourArithmetic,  // UIColor(HavrinFoundation)
    // links
    &kAppIdentity,  // NSBundle(HavrinFoundation)
};

void (*const kInitialisers[])() = {SetMainQueueIdentifier};

}  // namespace

constinit const Image kHavrinFoundation{
    .name = "HavrinFoundation",
    .identification = HavrinFoundationVersionString,
    .strings = kStrings,
    .categories = kCategories,
    .initialisers = kInitialisers,
    .isLibrary = true,
};

namespace {

// Before any static initialiser of a program that links the library statically; the loader sees to it otherwise.
[[gnu::init_priority(200)]] const Loader kLoader{kHavrinFoundation};

}  // namespace

}  // namespace havrin
