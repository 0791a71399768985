// SPDX-License-Identifier: Apache-2.0
// Decoding of the caller's types from documents of any format.
//
//   struct Station {
//     std::int64_t identifier = 0;
//     std::string name;
//     std::optional<std::string> song;
//
//     using Fields = FieldList<Field<"identifier", &Station::identifier>,
//                              Field<"name", &Station::name>,
//                              Field<"song", &Station::song>>;
//   };
//   const auto stations = JSONDecoder().decode<std::vector<Station>>(R"([{"identifier": 7, "name": "Nord"}])");
//   stations[0].name               "Nord"
//   stations[0].song               empty
//
// Decodable types: bool, integers of every width, float, double, std::string; std::optional, std::vector, std::map and
// std::unordered_map with text keys, of such types; and types of the caller, in one of four ways:
//
// - `using Fields = FieldList<...>;`: one line per field, as above.
// - `static Decoded<T> fromDecoder(Decoder& decoder);`: by hand, with errors as values, using the `try...` functions.
// - `explicit T(Decoder& decoder);`: by hand, with errors thrown, which costs a throw for each bad value.
// - `template <> struct havrin::DecodingTraits<T>`: for types that cannot be changed, with a `fromDecoder` as above.
//
// Every operation comes in two forms: `decode` throws its error, `tryDecode` returns a `Decoded`. A type that decodes
// with values never causes an exception. decodable.h has the rules for types, decoding_source.h the interface of a
// format; both are included here.
//
// A decoder and its containers are valid during the call that provided them, on one thread.
// Left out: encoding; key and date strategies; dates and bytes as built-in types.
#pragma once

#include <HavrinFoundation/platform/decoding/decodable.h>
#include <HavrinFoundation/platform/decoding/decoder.h>
#include <HavrinFoundation/platform/decoding/keyed_decoding_container.h>
#include <HavrinFoundation/platform/decoding/unkeyed_decoding_container.h>
#include <HavrinFoundation/platform/documents/coding_path.h>
#include <HavrinFoundation/platform/documents/decoding_error.h>
