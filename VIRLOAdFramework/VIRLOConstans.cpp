#include "VIRLOConstans.h"

#include <string_view>

static_assert(std::string_view(VIRLO_API_BASE_URL).find_first_of(" \t\r\n") == std::string_view::npos,
              "VIRLO_API_BASE_URL holds white space");

const char* const VIRLOAdFrameworkName = "VIRLOAdFramework";
const char* const VIRLOAdFrameworkVersion = VIRLO_VERSION;
const double VIRLOAdFrameworkVersionNumber = 1.0;
const char* const VIRLOAdFrameworkVersionString = "1.0";
const char* const VIRLOAdFrameworkBundleIdentifier = "com.virlohq.VIRLOAdFramework";
const char* const VIRLOAdFrameworkApiBaseURL = VIRLO_API_BASE_URL;

const char* const VIRLOAdFrameworkNotificationDidGetCurrency = "VIRLOAdFrameworkNotificationDidGetCurrency";

const char* const VIRLOAdFrameworkPreferencesEmailAddress = "VIRLOAdFrameworkPreferencesEmailAddress";
const char* const VIRLOAdFrameworkPreferencesPhoneNumber = "VIRLOAdFrameworkPreferencesPhoneNumber";

const char* const kCurrencyRequestsSyncQueue = "com.virlohq.VIRLOAdControllerSyncQueue";

const char* const VIRLOAdFrameworkPlacementAppLaunch = "AppLaunch";
const char* const VIRLOAdFrameworkPlacementAppResume = "AppResume";
const char* const VIRLOAdFrameworkPlacementAppClose = "AppClose";
const char* const VIRLOAdFrameworkPlacementMainMenu = "MainMenu";
const char* const VIRLOAdFrameworkPlacementPause = "Pause";
const char* const VIRLOAdFrameworkPlacementStageOpen = "StageOpen";
const char* const VIRLOAdFrameworkPlacementStageComplete = "StageComplete";
const char* const VIRLOAdFrameworkPlacementStageFailed = "StageFailed";
const char* const VIRLOAdFrameworkPlacementLevelUp = "LevelUp";
const char* const VIRLOAdFrameworkPlacementBetweenLevels = "BetweenLevels";
const char* const VIRLOAdFrameworkPlacementStoreOpen = "StoreOpen";
const char* const VIRLOAdFrameworkPlacementInAppPurchase = "InAppPurchase";
const char* const VIRLOAdFrameworkPlacementInAppPurchaseAbandoned = "AbandonInAppPurchase";
const char* const VIRLOAdFrameworkPlacementVirtualGoodPurchase = "VirtualGoodPurchase";
const char* const VIRLOAdFrameworkPlacementUserHighScore = "UserHighScore";
const char* const VIRLOAdFrameworkPlacementOutOfGoods = "OutOfGoods";
const char* const VIRLOAdFrameworkPlacementOutOfEnergy = "OutOfEnergy";
const char* const VIRLOAdFrameworkPlacementInsufficientCurrency = "InsufficientCurrency";
const char* const VIRLOAdFrameworkPlacementFinishedTutorial = "FinishedTutorial";
