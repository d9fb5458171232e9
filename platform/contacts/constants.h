#pragma once

#include "platform/foundation/cf_base.h"
#include "platform/foundation/string.h"

// The framework's string constants in the order of its documentation: always(name, text) for those that every version
// has, later(name, text) for those that came with 10.7 or after and that a program looks up by name.
// clang-format off
#define AB_STRING_CONSTANTS(always, later) \
  later(ABAddressBookErrorDomain, "ABAddressBookErrorDomain") \
  later(ABMultiValueIdentifiersErrorKey, "ABMultiValueIdentifiersErrorKey") \
  always(kABUIDProperty, "UID") \
  always(kABCreationDateProperty, "Creation") \
  always(kABModificationDateProperty, "Modification") \
  always(kABFirstNameProperty, "First") \
  always(kABLastNameProperty, "Last") \
  always(kABFirstNamePhoneticProperty, "FirstPhonetic") \
  always(kABLastNamePhoneticProperty, "LastPhonetic") \
  always(kABNicknameProperty, "Nickname") \
  always(kABMaidenNameProperty, "MaidenName") \
  always(kABBirthdayProperty, "Birthday") \
  later(kABBirthdayComponentsProperty, "BirthdayComponents") \
  always(kABOrganizationProperty, "Organization") \
  always(kABJobTitleProperty, "JobTitle") \
  always(kABHomePageProperty, "HomePage") \
  always(kABURLsProperty, "URLs") \
  always(kABHomePageLabel, "_$!<HomePage>!$_") \
  always(kABCalendarURIsProperty, "calendarURIs") \
  always(kABEmailProperty, "Email") \
  always(kABEmailWorkLabel, "_$!<Work>!$_") \
  always(kABEmailHomeLabel, "_$!<Home>!$_") \
  later(kABEmailMobileMeLabel, "_$!<MobileMe>!$_") \
  always(kABAddressProperty, "Address") \
  always(kABAddressStreetKey, "Street") \
  always(kABAddressCityKey, "City") \
  always(kABAddressStateKey, "State") \
  always(kABAddressZIPKey, "ZIP") \
  always(kABAddressCountryKey, "Country") \
  always(kABAddressCountryCodeKey, "CountryCode") \
  always(kABAddressHomeLabel, "_$!<Home>!$_") \
  always(kABAddressWorkLabel, "_$!<Work>!$_") \
  always(kABOtherDatesProperty, "ABDate") \
  later(kABOtherDateComponentsProperty, "ABDateComponents") \
  always(kABAnniversaryLabel, "_$!<Anniversary>!$_") \
  always(kABRelatedNamesProperty, "ABRelatedNames") \
  always(kABFatherLabel, "_$!<Father>!$_") \
  always(kABMotherLabel, "_$!<Mother>!$_") \
  always(kABParentLabel, "_$!<Parent>!$_") \
  always(kABBrotherLabel, "_$!<Brother>!$_") \
  always(kABSisterLabel, "_$!<Sister>!$_") \
  always(kABChildLabel, "_$!<Child>!$_") \
  always(kABFriendLabel, "_$!<Friend>!$_") \
  always(kABSpouseLabel, "_$!<Spouse>!$_") \
  always(kABPartnerLabel, "_$!<Partner>!$_") \
  always(kABAssistantLabel, "_$!<Assistant>!$_") \
  always(kABManagerLabel, "_$!<Manager>!$_") \
  always(kABDepartmentProperty, "ABDepartment") \
  always(kABPersonFlags, "ABPersonFlags") \
  always(kABPhoneProperty, "Phone") \
  always(kABPhoneWorkLabel, "_$!<Work>!$_") \
  always(kABPhoneHomeLabel, "_$!<Home>!$_") \
  always(kABPhoneiPhoneLabel, "iPhone") \
  always(kABPhoneMobileLabel, "_$!<Mobile>!$_") \
  always(kABPhoneMainLabel, "_$!<Main>!$_") \
  always(kABPhoneHomeFAXLabel, "_$!<HomeFAX>!$_") \
  always(kABPhoneWorkFAXLabel, "_$!<WorkFAX>!$_") \
  always(kABPhonePagerLabel, "_$!<Pager>!$_") \
  always(kABAIMInstantProperty, "AIMInstant") \
  always(kABAIMWorkLabel, "_$!<Work>!$_") \
  always(kABAIMHomeLabel, "_$!<Home>!$_") \
  later(kABAIMMobileMeLabel, "_$!<MobileMe>!$_") \
  always(kABJabberInstantProperty, "JabberInstant") \
  always(kABJabberWorkLabel, "_$!<Work>!$_") \
  always(kABJabberHomeLabel, "_$!<Home>!$_") \
  always(kABMSNInstantProperty, "MSNInstant") \
  always(kABMSNWorkLabel, "_$!<Work>!$_") \
  always(kABMSNHomeLabel, "_$!<Home>!$_") \
  always(kABYahooInstantProperty, "YahooInstant") \
  always(kABYahooWorkLabel, "_$!<Work>!$_") \
  always(kABYahooHomeLabel, "_$!<Home>!$_") \
  always(kABICQInstantProperty, "ICQInstant") \
  always(kABICQWorkLabel, "_$!<Work>!$_") \
  always(kABICQHomeLabel, "_$!<Home>!$_") \
  later(kABInstantMessageProperty, "InstantMessage") \
  later(kABInstantMessageUsernameKey, "InstantMessageUsername") \
  later(kABInstantMessageServiceKey, "InstantMessageService") \
  later(kABInstantMessageServiceAIM, "AIMInstant") \
  later(kABInstantMessageServiceFacebook, "FacebookInstant") \
  later(kABInstantMessageServiceGaduGadu, "GaduGaduInstant") \
  later(kABInstantMessageServiceGoogleTalk, "GoogleTalkInstant") \
  later(kABInstantMessageServiceICQ, "ICQInstant") \
  later(kABInstantMessageServiceJabber, "JabberInstant") \
  later(kABInstantMessageServiceMSN, "MSNInstant") \
  later(kABInstantMessageServiceQQ, "QQInstant") \
  later(kABInstantMessageServiceSkype, "SkypeInstant") \
  later(kABInstantMessageServiceYahoo, "YahooInstant") \
  later(kABSocialProfileProperty, "SocialProfile") \
  later(kABSocialProfileURLKey, "url") \
  later(kABSocialProfileUsernameKey, "username") \
  later(kABSocialProfileUserIdentifierKey, "userIdentifier") \
  later(kABSocialProfileServiceKey, "serviceName") \
  later(kABSocialProfileServiceTwitter, "twitter") \
  later(kABSocialProfileServiceFacebook, "facebook") \
  later(kABSocialProfileServiceLinkedIn, "linkedin") \
  later(kABSocialProfileServiceFlickr, "flickr") \
  later(kABSocialProfileServiceMySpace, "myspace") \
  always(kABNoteProperty, "Note") \
  always(kABMiddleNameProperty, "Middle") \
  always(kABMiddleNamePhoneticProperty, "MiddlePhonetic") \
  always(kABTitleProperty, "Title") \
  always(kABSuffixProperty, "Suffix") \
  always(kABGroupNameProperty, "GroupName") \
  always(kABWorkLabel, "_$!<Work>!$_") \
  always(kABHomeLabel, "_$!<Home>!$_") \
  always(kABOtherLabel, "_$!<Other>!$_") \
  later(kABMobileMeLabel, "_$!<MobileMe>!$_") \
  always(kABDatabaseChangedNotification, "ABDatabaseChangedNotification") \
  always(kABDatabaseChangedExternallyNotification, "ABDatabaseChangedExternallyNotification") \
  always(kABInsertedRecords, "ABInsertedRecords") \
  always(kABUpdatedRecords, "ABUpdatedRecords") \
  always(kABDeletedRecords, "ABDeletedRecords") \
  later(kABSocialProfileServiceSinaWeibo, "sinaweibo")
// clang-format on

extern "C" {
#define AB_DECLARE_CONSTANT(name, text) extern PLATFORM_API const NSString name;
AB_STRING_CONSTANTS(AB_DECLARE_CONSTANT, AB_DECLARE_CONSTANT)
#undef AB_DECLARE_CONSTANT
}

// What typeOfProperty: and propertyType answer.
using ABPropertyType = NSInteger;
inline constexpr ABPropertyType kABMultiValueMask = 0x100;
inline constexpr ABPropertyType kABErrorInProperty = 0;
inline constexpr ABPropertyType kABStringProperty = 1;
inline constexpr ABPropertyType kABIntegerProperty = 2;
inline constexpr ABPropertyType kABRealProperty = 3;
inline constexpr ABPropertyType kABDateProperty = 4;
inline constexpr ABPropertyType kABArrayProperty = 5;
inline constexpr ABPropertyType kABDictionaryProperty = 6;
inline constexpr ABPropertyType kABDataProperty = 7;
inline constexpr ABPropertyType kABDateComponentsProperty = 8;
inline constexpr ABPropertyType kABMultiStringProperty = kABMultiValueMask | kABStringProperty;
inline constexpr ABPropertyType kABMultiDateProperty = kABMultiValueMask | kABDateProperty;
inline constexpr ABPropertyType kABMultiDictionaryProperty = kABMultiValueMask | kABDictionaryProperty;
inline constexpr ABPropertyType kABMultiDateComponentsProperty = kABMultiValueMask | kABDateComponentsProperty;

// How a search element's children are joined.
using ABSearchConjunction = NSInteger;
inline constexpr ABSearchConjunction kABSearchAnd = 0;
inline constexpr ABSearchConjunction kABSearchOr = 1;

// How a search element compares a property with its value. The intervals are numbers of seconds.
enum ABSearchComparison : NSInteger {
  kABEqual,
  kABNotEqual,
  kABLessThan,
  kABLessThanOrEqual,
  kABGreaterThan,
  kABGreaterThanOrEqual,
  kABEqualCaseInsensitive,
  kABContainsSubString,
  kABContainsSubStringCaseInsensitive,
  kABPrefixMatch,
  kABPrefixMatchCaseInsensitive,
  kABBitsInBitFieldMatch,
  kABDoesNotContainSubString,
  kABDoesNotContainSubStringCaseInsensitive,
  kABNotEqualCaseInsensitive,
  kABSuffixMatch,
  kABSuffixMatchCaseInsensitive,
  kABWithinIntervalAroundToday,
  kABWithinIntervalAroundTodayYearless,
  kABNotWithinIntervalAroundToday,
  kABNotWithinIntervalAroundTodayYearless,
  kABWithinIntervalFromToday,
  kABWithinIntervalFromTodayYearless,
  kABNotWithinIntervalFromToday,
  kABNotWithinIntervalFromTodayYearless,
};

// The error codes of ABAddressBookErrorDomain.
inline constexpr NSInteger ABAddRecordsError = 1001;
inline constexpr NSInteger ABRemoveRecordsError = 1002;
inline constexpr NSInteger ABPropertyValueValidationError = 1012;
inline constexpr NSInteger ABPropertyUnsupportedBySourceError = 1013;
inline constexpr NSInteger ABPropertyReadOnlyError = 1014;

// The fields of a person's flags.
inline constexpr int kABShowAsMask = 7;
inline constexpr int kABShowAsPerson = 0;
inline constexpr int kABShowAsCompany = 1;
inline constexpr int kABShowAsResource = 2;
inline constexpr int kABShowAsRoom = 3;
inline constexpr int kABNameOrderingMask = 56;
inline constexpr int kABDefaultNameOrdering = 0;
inline constexpr int kABFirstNameFirst = 32;
inline constexpr int kABLastNameFirst = 16;
