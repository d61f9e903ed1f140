#pragma once

namespace quillet::news {

// The main bundle's identifier, which the app tells the services it talks to.
inline constexpr const char* kBundleIdentifier = "app.quillet.news";

// The app's keys in the defaults store.
inline constexpr const char* kLaunchAmountsKey = "LaunchAmounts";
inline constexpr const char* kBadgeCountKey = "badgeCount";
inline constexpr const char* kNewsIDKey = "NewsID";
inline constexpr const char* kDeviceIDKey = "DeviceID";
inline constexpr const char* kDeviceTokenKey = "DeviceToken";
inline constexpr const char* kUserIDKey = "UserID";

// Local broadcasts of the shell.
inline constexpr const char* kRegistrationCompletedNotification = "onRegistrationCompleted";
inline constexpr const char* kMessageReceivedNotification = "onMessageReceived";
inline constexpr const char* kReceivedNotification = "receivedNotification";

// The launch options key of a push that opened the app.
inline constexpr const char* kLaunchOptionsRemoteNotificationKey = "UIApplicationLaunchOptionsRemoteNotificationKey";

// Screen identifiers of the storyboard "Main".
inline constexpr const char* kMainStoryboardName = "Main";
inline constexpr const char* kSplashScreen = "SplashVC";
inline constexpr const char* kHomeScreen = "HomeVC";
inline constexpr const char* kCategoryScreen = "CategoryVC";

}  // namespace quillet::news
