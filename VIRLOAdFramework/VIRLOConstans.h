#pragma once

#include "Export.h"

/// Constants shared by the host and the library. The file's name keeps its spelling.

extern VIRLO_EXPORT const char* const VIRLOAdFrameworkName;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkVersion;
/// The library's build number, independent of `VIRLOAdFrameworkVersion`.
extern VIRLO_EXPORT const double VIRLOAdFrameworkVersionNumber;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkVersionString;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkBundleIdentifier;
/// The ad server: an https URL with no path, fixed when the library is built (CMake's VIRLO_API_BASE_URL).
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkApiBaseURL;

/// Posted on the default notification centre for a reward, from any thread, without a sender and with the
/// server's response as its user info.
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkNotificationDidGetCurrency;

/// Preferences that prefill the contact form.
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPreferencesEmailAddress;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPreferencesPhoneNumber;

/// Label of the queue on which delayed currency checks run.
extern VIRLO_EXPORT const char* const kCurrencyRequestsSyncQueue;

/// Placements: moments of the host's flow at which it requests an ad. The server chooses the ad by them; a
/// host may also use placements of its own.
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementAppLaunch;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementAppResume;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementAppClose;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementMainMenu;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementPause;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementStageOpen;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementStageComplete;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementStageFailed;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementLevelUp;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementBetweenLevels;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementStoreOpen;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementInAppPurchase;
/// Deliberate: its value is "AbandonInAppPurchase", the word order that the server expects.
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementInAppPurchaseAbandoned;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementVirtualGoodPurchase;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementUserHighScore;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementOutOfGoods;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementOutOfEnergy;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementInsufficientCurrency;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementFinishedTutorial;
