// Decoding values of the caller's types from outside data, whatever its format.
//
//   struct Station {
//     std::int64_t identifier = 0;
//     std::string name;
//     std::optional<std::string> song;                 // may be absent or null
//
//     using Fields = FieldList<Field<"identifier", &Station::identifier>,
//                              Field<"name", &Station::name>,
//                              Field<"song", &Station::song>>;
//   };
//   auto stations = JSONDecoder().decode<std::vector<Station>>(text);
//
// Types that decode: bool, integers of every width, float, double, std::string; std::optional, std::vector, std::map and
// std::unordered_map with text keys, of such types; and types of the caller's, in one of four ways:
//
//   using Fields = FieldList<...>;                                 one line per field, as above
//   static Decoded<T> fromDecoder(Decoder& decoder);               by hand, errors as values: `try...` all through
//   explicit T(Decoder& decoder);                                  by hand, errors thrown: costs a throw per bad value
//   template <> struct havrin::DecodingTraits<T>                   for types of others: a `fromDecoder` as above
//
// Every operation stands here twice: `decode` throws its error, `tryDecode` gives a `Decoded`. A type that decodes by
// values is never the cause of an exception. decodable.h holds the rules for types, decoding_source.h what a format
// implements; both come with this header.
//
// A decoder and its containers are valid during the call that gave them, on one thread.
// Left out: encoding; key and date strategies; dates and bytes as built-in types.
#pragma once

#include <HavrinFoundation/platform/decoding/decodable.h>
#include <HavrinFoundation/platform/decoding/decoder.h>
#include <HavrinFoundation/platform/decoding/keyed_decoding_container.h>
#include <HavrinFoundation/platform/decoding/unkeyed_decoding_container.h>
#include <HavrinFoundation/platform/documents/coding_path.h>
#include <HavrinFoundation/platform/documents/decoding_error.h>
