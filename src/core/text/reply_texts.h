#pragma once

#include <string_view>

// The replies with which the filtering service rejects or defers mail: whole SMTP reply lines (RFC 5321, most
// with an enhanced status code, RFC 3463) without their CRLF, each named for its occasion. They are sent and
// logged literally, and scripts and log readers compare them, so their wording, mistakes included, must not
// change. All are ASCII and live as long as the program.
namespace zrl::replies {

// Content, sender and connection checks.
inline constexpr std::string_view rejected = "550 5.1.0 rejected";
inline constexpr std::string_view ip_blacklisted = "553 5.3.0 rejected - your IP is blacklisted";
inline constexpr std::string_view domain_was_blacklisted =
    "554 5.1.0 rejected - your domain has been blacklisted";
inline constexpr std::string_view ip_was_blacklisted = "553 5.3.0 rejected - your IP has been blacklisted";
inline constexpr std::string_view subject_not_allowed = "550 5.1.0 rejected - your subject is not allowed";
inline constexpr std::string_view subject_empty = "550 5.1.0 rejected - your subject is empty";
inline constexpr std::string_view subject_too_long =
    "550 5.1.0 rejected - your subject is greater than 110 characters";
inline constexpr std::string_view subject_many_spaces =
    "550 5.1.0 rejected - your subject contains to many spaces";
// Temporary: the sending server is expected to try again.
inline constexpr std::string_view greylisted =
    "451 4.7.1 Please try again later - http://greylisting.mirvan.example/";
inline constexpr std::string_view mailbox_not_allowed =
    "550 5.7.1 Requested action not taken: mailbox name not allowed";
inline constexpr std::string_view domain_not_allowed =
    "550 5.7.1 Requested action not taken: domain name not allowed";
inline constexpr std::string_view ehlo_not_allowed = "500 EHLO not allowed";
inline constexpr std::string_view body_not_allowed = "550 5.1.0 rejected - your body is not allowed";
inline constexpr std::string_view ndr_not_allowed = "550 5.1.0 rejected - I do not allow any NDRs";
inline constexpr std::string_view different_from_fields = "550 5.1.0 rejected - different from fields";
inline constexpr std::string_view no_message_id_in_mail = "550 5.1.0 rejected - no message ID in email";
inline constexpr std::string_view caller_id_failed = "550 5.1.0 rejected - CallerID authentication failed";
// These two end the connection; the client may try again later.
inline constexpr std::string_view service_not_available =
    "421 I am ready but Service not available, closing transmission channel";
inline constexpr std::string_view destination_not_available =
    "421 I am ready but destination Server not available, closing transmission channel";
// Checks of the greeting (HELO or EHLO).
inline constexpr std::string_view helo_is_mine = "550 5.1.0 rejected - you are using my helo";
inline constexpr std::string_view helo_blacklisted = "554 5.1.0 rejected - your helo is blacklisted";
inline constexpr std::string_view helo_without_dot = "554 5.1.0 rejected - your helo does not contain a dot";
// Checks of attachments.
inline constexpr std::string_view illegal_file = "550 5.1.0 rejected - illegal file/s attached";
inline constexpr std::string_view illegal_extension =
    "550 5.1.0 rejected - file/s with illegal extension attached";
// Checks of the header and of the sender.
inline constexpr std::string_view no_message_id_found = "550 5.1.0 rejected - no Message-ID found";
inline constexpr std::string_view senders_differ = "550 5.1.0 rejected - MIME and SMTP Sender are different";
inline constexpr std::string_view no_mail_exchanger =
    "550 5.1.0 rejected - I dont like domains without MX record";
inline constexpr std::string_view sender_without_at = "550 5.1.0 rejected - sender does not contain any @";
inline constexpr std::string_view address_blacklisted =
    "554 5.1.0 rejected - your email has been blacklisted";
inline constexpr std::string_view domain_is_local =
    "550 5.1.0 rejected - your sender domain is registered as my localdomain";
inline constexpr std::string_view address_is_local =
    "550 5.1.0 rejected - your sender email is registered as my localmail";
// Checks by the DNS.
inline constexpr std::string_view rbl_listed = "553 5.3.0 rejected - you have been RBL blacklisted";
inline constexpr std::string_view surbl_listed = "550 5.1.0 rejected - you are listed in a SURBL list";
inline constexpr std::string_view spf_failed =
    "554 5.1.0 rejected - SPF authentication failed (http://spf.mirvan.example/)";
// The greeting again.
inline constexpr std::string_view helo_is_ip =
    "550 5.1.0 rejected - Your HELO/EHLO contains IP Number which is illegal";

}  // namespace zrl::replies
