#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes examples/radio/stations.json: made-up stations in several scripts, a tenth of them bad in ten different ways.

  tools/make_stations.py > examples/radio/stations.json             the same text each time
  tools/make_stations.py --lines --count 1000000 > many.jsonl       more of them, one a line
"""
import argparse
import json
import random

COUNT = 320
BAD_EVERY = 10

# Words to put names and songs together from; no station and no song of the world is meant.
SCRIPTS = {
    "latin": (["Nord", "Aurora", "Lantern", "Meridian", "Côte", "Über", "Silver", "Harbour", "Ember", "Quartz", "Žlutá",
               "Orchard"],
              ["Eins", "FM", "Radio", "Signal", "Wave", "Vinyl", "Nuit", "Kanal", "Dial", "Tide"],
              ["Slow", "Paper", "Midnight", "Copper", "Rain on", "Seven", "Almost", "Glass", "Borrowed", "Un peu de"],
              ["Lights", "Trains", "the Harbour", "Letters", "October", "Clouds", "Geometry", "Strangers", "lumière"]),
    "greek": (["Ράδιο", "Κύμα", "Φάρος", "Αστέρι"], ["Ένα", "Νότος", "Αθήνα", "Άλφα"],
              ["Μικρό", "Γαλάζιο", "Παλιό"], ["τραγούδι", "ταξίδι", "καλοκαίρι"]),
    "cyrillic": (["Радио", "Волна", "Маяк", "Север"], ["Один", "Река", "Свет", "Луна"],
                 ["Тихий", "Белый", "Долгий"], ["вечер", "поезд", "снег"]),
    "japanese": (["ラジオ", "波", "月光", "朝"], ["東", "一番", "の声", "放送"], ["静かな", "青い", "遠い"],
                 ["夜", "雨", "電車"]),
    "korean": (["라디오", "파도", "새벽"], ["하나", "서울", "별빛"], ["푸른", "느린", "작은"], ["바다", "편지", "기차"]),
}
GENRES = {"jazz": "#2F6F8F", "news": "#B03A2E", "ambient": "#3E7C59", "folk": "#A67C00", "techno": "#6C3483",
          "classical": "#4A4A8A", "talk": "#7D6608", "rock": "#943126", "chanson": "#AF4C7B", "choral": "#1F618D",
          "dub": "#117864", "swing": "#CA6F1E"}


def station(number, words):
    script = words.choice(list(SCRIPTS) + ["latin"] * 6)
    first, second, opening, ending = SCRIPTS[script]
    joint = "" if script == "japanese" else " "
    genre = words.choice(list(GENRES))
    listeners = int(10 ** words.uniform(1, 6.3))
    link = f"https://stations.example.org/{genre}/{number}"
    if number % 5 == 0:
        link += f"?utm_source=directory&utm_campaign={genre}"
    return {
        "identifier": 1000 + number * 37,
        "onAirSince": 86_400_000 * words.randrange(9_000, 20_500) + 3_600_000 * words.randrange(24),
        "name": words.choice(first) + joint + words.choice(second) + (f" {number}" if number % 3 == 0 else ""),
        "song": "" if number % 13 == 0 else words.choice(opening) + joint + words.choice(ending),
        "listeners": listeners,
        "plays": listeners * words.randrange(3, 400),
        "genre": genre,
        "genreColour": GENRES[genre],
        "link": link,
        "favourite": number % 29 == 0,
    }


def without(entry, key):
    return {k: v for k, v in entry.items() if k != key}


# Each takes a good station and gives what stands in its place.
FAULTS = [
    lambda s: without(s, "name"),
    lambda s: s | {"listeners": "many"},
    lambda s: s | {"listeners": 12.5},
    lambda s: s | {"plays": 99999999999999999999},
    lambda s: s | {"identifier": None},
    lambda s: s | {"genreColour": "#GG0000"},
    lambda s: s | {"link": "stations example org"},
    lambda s: s | {"onAirSince": "last summer"},
    lambda s: None,
    lambda s: [s["name"], s["song"]],
]


def main():
    parser = argparse.ArgumentParser(description="Writes made-up stations.")
    parser.add_argument("--count", type=int, default=COUNT)
    parser.add_argument("--lines", action="store_true", help="JSON lines")
    options = parser.parse_args()
    words = random.Random(20261122)
    if not options.lines:
        print('{\n  "stations": [')
    for number in range(1, options.count + 1):
        entry = station(number, words)
        if number % BAD_EVERY == 0:
            entry = FAULTS[number // BAD_EVERY % len(FAULTS)](entry)
        text = json.dumps(entry, ensure_ascii=False)
        print(text if options.lines else "    " + text + ("," if number < options.count else ""))
    if not options.lines:
        print("  ]\n}")


if __name__ == "__main__":
    main()
