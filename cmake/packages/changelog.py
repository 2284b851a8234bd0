#!/usr/bin/env python3
"""changelog.py CHANGELOG.md REVISION MAINTAINER

Prints the changelog of the tree in the form that Debian packages carry: each "## VERSION (DATE)" with
its list. A version without a date is not released; it gets the time SOURCE_DATE_EPOCH.
"""

import os
import re
import sys
import textwrap
from datetime import datetime, timezone
from email.utils import format_datetime
from pathlib import Path


def main():
    file, revision, maintainer = Path(sys.argv[1]), sys.argv[2], sys.argv[3]
    sections = re.split(r"^## ", file.read_text(), flags=re.M)[1:]
    for section in sections:
        heading, _, body = section.partition("\n")
        version, date = re.fullmatch(r"(\S+)(?: \((\d{4}-\d\d-\d\d|unreleased)\))?", heading.strip()).groups()
        when = (datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]), timezone.utc)
                if date in (None, "unreleased")
                else datetime.fromisoformat(date).replace(tzinfo=timezone.utc))
        print(f"vq-client-common ({version}-{revision}) unstable; urgency=medium\n")
        for item in re.split(r"^- ", body, flags=re.M)[1:]:
            print(textwrap.fill(" ".join(item.replace("`", "").split()), 78, initial_indent="  * ",
                                subsequent_indent="    "))
        print(f"\n -- {maintainer}  {format_datetime(when)}\n")
    return 0 if sections else 1


if __name__ == "__main__":
    sys.exit(main())
