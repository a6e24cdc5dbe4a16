#pragma once

#include "host/script/command_schema.h"
#include "host/script/schema/flow.h"

// The commands that bring values into the store.
namespace host::schema {

inline constexpr AttributeSchema command_line_parser_attributes[] = {
    {.name = "knownParams",
     .form = Form::text,
     .meaning =
         "The parameters to keep, with one blank between them; one that ends in `=` or `:` has a value. Absent or "
         "empty: both lines stay whole."},
};
inline constexpr KeyUse command_line_parser_keys[] = {
    {"String_CommandLine", Access::reads, "this process's line"},
    {"String_CommandLine", Access::writes, "cut down to `knownParams`"},
    {"String_ParrentCommandLine", Access::writes, "the parent's line, cut down as well; empty where it cannot be read"},
    {"String_PixelUrlParam", Access::writes,
     "the text behind `/pixel_url=` up to a blank, of the parent's line where both have it; as it was where none has"},
    {"int_Force", Access::writes, "1 where a line has `/force`, else 0"},
    {"int_Silent", Access::writes, "the same for `/silent`"},
    {"int_KeepSettings", Access::writes, "the same for `/keepSettings`"},
    {"int_SkipKyagent", Access::writes, "the same for `/skipKyagent`"},
    {"int_RunKyagent", Access::writes, "1 less `int_SkipKyagent`"},
    {"int_OnlyProgress", Access::writes, "0"},
    {"int_RunUninstall", Access::writes, "1 where a line has `/uninstall`, else 0"},
    {"int_RunUpdate", Access::writes, "the same for `/update`"},
    {"int_RunRepair", Access::writes, "the same for `/repair`"},
    {"int_IsUpgrade", Access::writes, "the same for `/upgrade`"},
    {"int_AttachWindow", Access::writes, "the same for `/attach`"},
};
inline constexpr CommandSchema command_line_parser = {
    .name = "CommandLineParser",
    .log_name = "CommandLineParser",
    .summary = "Turns the switches of the command line, and of the parent process's, into variables.",
    .remarks =
        R"(A switch counts when it stands on either line. Case counts, and it is found anywhere: `/forced` is `/force`.

With `knownParams` both lines are cut down before they are read, so that a switch that is not listed there is
off. What is kept stands in an order of its own: flags first, then those with a value, each sorted. Of a
value in quotes all is kept up to the closing quote, of another one all up to a blank; only the first of
several is kept, and one without a closing quote goes with its name. The log has both lines whole.)",
    .attributes = command_line_parser_attributes,
    .keys = command_line_parser_keys,
    .results = shape_results,
    .example = R"(<CommandLineParser knownParams="/silent /force /keepSettings /uninstall /attach /pixel_url="/>)",
};

inline constexpr AttributeSchema get_date_time_attributes[] = {
    {.name = "var",
     .form = Form::integer_name,
     .required = true,
     .access = Access::writes,
     .meaning = "The variable that receives the time."},
};
inline constexpr CommandSchema get_date_time = {
    .name = "GetDateTime",
    .log_name = "GetDateTime",
    .summary = "Stores the time: seconds since the start of 1970, UTC.",
    .remarks = "From 19 January 2038 on the stored number is negative.",
    .attributes = get_date_time_attributes,
    .results = shape_results,
    .example = R"(<GetDateTime var="StartTime"/>)",
};

inline constexpr AttributeSchema get_string_from_xml_attributes[] = {
    {.name = "var",
     .form = Form::text_name,
     .required = true,
     .access = Access::writes,
     .meaning = "The variable that receives the text; it stays as it is where there is none."},
    {.name = "xpath",
     .form = Form::xpath,
     .required = true,
     .expanded = true,
     .keeps_expansion = true,
     .meaning = "The element whose text is read, or whose attribute."},
    {.name = "attribute",
     .form = Form::text,
     .meaning = "The attribute to read; absent or empty: the element's text with that of all elements in it."},
    {.name = "xmlVar",
     .form = Form::text_name,
     .access = Access::reads,
     .meaning = "The variable that holds the document; `file` is then not looked at."},
    {.name = "file",
     .form = Form::file_path,
     .expanded = true,
     .meaning =
         "The document's file. With neither `xmlVar` nor `file` it is the one that `String_InstallItemsXml` names."},
    {.name = "defaultValue",
     .form = Form::text,
     .expanded = true,
     .meaning = "A text for the log where nothing was read. It is not stored."},
};
inline constexpr KeyUse get_string_from_xml_keys[] = {
    {"String_InstallItemsXml", Access::reads, "the document's file, where neither `xmlVar` nor `file` is given"},
    {"int_ReturnCode", Access::writes,
     "where nothing was read: 1 for no match, 0 for an empty text, else the error's code; untouched on success"},
};
inline constexpr ResultMeaning get_string_from_xml_results[] = {
    {"0", "the text is stored, or there was no match, no such attribute or no text in it"},
    {"1168", "the document is not there or not well-formed"},
    {"1359", "there is no document to read, or another thread is inside the command"},
};
inline constexpr CommandSchema get_string_from_xml = {
    .name = "GetStringFromXml",
    .log_name = "GetStringFromXml",
    .summary = "Reads one text out of an XML document by XPath.",
    .remarks =
        R"(The text that is read is expanded before it is stored; where it names an undefined variable it is stored
as it stands. An element's text is that of all elements in it, without white space at its ends; between two
texts one blank stands for white space alone. What is in a namespace is found by `local-name()`.

A file may be UTF-8, UTF-16 with its byte order mark, or have the encoding that it declares (ISO-8859-1 and
windows-1252 work in a rehearsal on any desk), and have up to 64 MB. A document type is not allowed.

Without a match the result is 0 and `int_ReturnCode` is 1, which the process would end with: a script sets
`ReturnCode` back to 0 behind a value that may be absent.

A document that is not there or not well-formed gives 1168 and puts its code into `int_ReturnCode`, which
ends the run. `xmlVar` must hold a document: an unset variable stops the process.

`[Name]` in `xpath` is a variable, and the predicate `[Name]` looks the same. Where one pair of brackets
names no variable the whole `xpath` stays as it is: a predicate works in an `xpath` without variables, and
not beside one. `xpath` is expanded at the first run and stays as it is then; in a loop, later runs see
the first run's values.)",
    .attributes = get_string_from_xml_attributes,
    .keys = get_string_from_xml_keys,
    .results = get_string_from_xml_results,
    .example =
        R"(<GetStringFromXml var="InstallPath" xpath="/config/UninstallData/MainLine/InstallPath" xmlVar="ConfigXml"/>)",
};

inline constexpr AttributeSchema load_files_attributes[] = {
    {.name = "resourceID",
     .form = Form::integer,
     .numbered = true,
     .gaps_allowed = true,
     .needs = "outResource",
     .meaning = "The document's number among the library's resources of type \"XML\"."},
    {.name = "outResource",
     .form = Form::text_name,
     .access = Access::writes,
     .numbered = true,
     .gaps_allowed = true,
     .needs = "resourceID",
     .meaning = "The variable that receives the text of the document with the same number."},
    {.name = "error",
     .form = Form::integer_name,
     .access = Access::writes,
     .meaning = "The variable that receives 1359 where a document is not there; it stays as it is otherwise."},
};
inline constexpr ResultMeaning load_files_results[] = {
    {"0", "also where a document is not there"},
    {"1359", "another thread is inside the command"},
};
inline constexpr CommandSchema load_files_from_resources = {
    .name = "LoadFilesFromResources",
    .log_name = "LoadFilesFromResources",
    .summary = "Copies documents out of the library into text variables.",
    .remarks =
        R"(Documents are loaded in the order of their numbers, up to the first that is not there. Numbers may be
missing, but a number is looked at only where it is smaller than the count of the element's attributes:
number them from 1 on.

The edition's configuration is document 20005.)",
    .attributes = load_files_attributes,
    .results = load_files_results,
    .example = R"(<LoadFilesFromResources resourceID1="20005" outResource1="ConfigXml" error="ConfigError"/>)",
};

}  // namespace host::schema
