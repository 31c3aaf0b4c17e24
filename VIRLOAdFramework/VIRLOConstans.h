#pragma once

#include "Export.h"

/// The names that a host and the library share. Texts without end: they live as long as the process.

extern VIRLO_EXPORT const char* const VIRLOAdFrameworkName;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkVersion;
/// The library's build, which counts apart from `VIRLOAdFrameworkVersion`.
extern VIRLO_EXPORT const double VIRLOAdFrameworkVersionNumber;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkVersionString;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkBundleIdentifier;
/// The ad server: an https URL with no path, fixed when the library is built (CMake's VIRLO_API_BASE_URL).
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkApiBaseURL;

/// Posted on the default notification centre when a reward was found, from any thread, with no sender and the
/// server's answer as its user info.
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkNotificationDidGetCurrency;

/// Preferences that the contact form is filled from.
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPreferencesEmailAddress;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPreferencesPhoneNumber;

/// Label of the queue on which delayed currency checks run.
extern VIRLO_EXPORT const char* const kCurrencyRequestsSyncQueue;

/// Placements: moments of the host's flow at which it asks for an ad. The server chooses the ad by them; a
/// host may name moments of its own beside these.
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
/// Its text is "AbandonInAppPurchase": the server knows it by that word order.
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementInAppPurchaseAbandoned;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementVirtualGoodPurchase;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementUserHighScore;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementOutOfGoods;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementOutOfEnergy;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementInsufficientCurrency;
extern VIRLO_EXPORT const char* const VIRLOAdFrameworkPlacementFinishedTutorial;
