# SPDX-License-Identifier: Apache-2.0
"""The faults of tests/faults.txt, for tools/faults, which tries them, and tools/check, which wants them up to date."""
import dataclasses


@dataclasses.dataclass
class Fault:
    fault: str  # what is wrong, as a sentence
    file: str
    old: str  # stands once in the file
    new: str
    test: str  # the test program that is to go red

    def misplaced(self, text):
        """What is wrong when the old text does not stand exactly once in the file's text."""
        times = text.count(self.old)
        return None if times == 1 else f"'{self.old}' stands {times} times in {self.file}"


FIELDS = [field.name for field in dataclasses.fields(Fault)]


def read_faults(text):
    """The faults that the text of tests/faults.txt lists: blocks of 'field: text' lines, an empty line between them."""
    faults, fields = [], {}
    for number, line in enumerate(text.splitlines() + [""], 1):
        if line.startswith("#"):
            continue
        if line.strip():
            field, colon, text = line.partition(":")
            if not colon or field not in FIELDS or field in fields:
                raise SystemExit(f"tests/faults.txt:{number}: not one of {', '.join(FIELDS)}: {line}")
            fields[field] = text.removeprefix(" ")
        elif fields:
            if missing := [field for field in FIELDS if field not in fields]:
                raise SystemExit(f"tests/faults.txt:{number}: the fault above has no {', '.join(missing)}")
            faults.append(Fault(**fields))
            fields = {}
    return faults
