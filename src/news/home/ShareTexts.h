#pragma once

#include <array>

// The fixed texts of sharing: URL schemes and addresses of the target apps,
// the activity types the share sheet leaves out, the composer's service and
// texts, the chat app's file and type identifier, the alerts and the mail.
// These are data the app must produce exactly; the code names the targets
// neutrally (social composer, photo app, chat app).
namespace quillet::news::ShareTexts {

inline constexpr const char* kShareSheetText = "QuilletNews App";
inline constexpr std::array<const char*, 9> kExcludedActivityTypes = {
    "UIActivityTypePostToWeibo",      "UIActivityTypePrint",
    "UIActivityTypeCopyToPasteboard", "UIActivityTypeSaveToCameraRoll",
    "UIActivityTypeAddToReadingList", "UIActivityTypePostToFlickr",
    "UIActivityTypePostToVimeo",      "UIActivityTypePostToTencentWeibo",
    "UIActivityTypeAirDrop"};

// Tag 1: the social composer.
inline constexpr const char* kSocialLogLine = "hike";
inline constexpr const char* kSocialServiceType = "SLServiceTypeFacebook";
inline constexpr const char* kSocialInitialText = "First post from my iPhone app";
inline constexpr const char* kSocialExampleLink = "https://www.example.com/";

// Tags 2 and 5: the photo app.
inline constexpr const char* kPhotoAppScheme = "instagram";
inline constexpr const char* kPhotoAppURL = "instagram://app";
inline constexpr const char* kPhotoAppLocationURL = "instagram://location?id=1";

// Tag 4: the chat app.
inline constexpr const char* kChatAppScheme = "whatsapp";
inline constexpr const char* kChatAppSendFormat = "whatsapp://send?text=%@";
inline constexpr const char* kChatAppMessage = "YOUR MSG";
inline constexpr const char* kChatAppURL = "whatsapp://app";
inline constexpr const char* kChatAppMissingTitle = "WhatsApp not installed.";
inline constexpr const char* kChatAppMissingMessage = "Your device has no WhatsApp installed.";
inline constexpr const char* kChatAppMissingButton = "OK";
inline constexpr const char* kChatAppImageFile = "whatsAppTmp.wai";
inline constexpr const char* kChatAppImageUTI = "net.whatsapp.image";

// The mail with the app's link ("Let Go"); the store link follows the body.
inline constexpr const char* kMailSubject = "QuilletNews App Link";
inline constexpr const char* kMailBody = "Hello, \n\n Please click on below link to download the App.\n\n ";
inline constexpr int kMailTransitionStyle = 2;

}  // namespace quillet::news::ShareTexts
