"""build_test.py FOLDER: the program is built with nothing of what only ./test installs."""

import re
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def run(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def files_of_group(group):
    """What lies on this machine of the group's packages, as far as it knows them."""
    if not shutil.which("dpkg-query"):
        return set()
    lines = (ROOT / "scripts/packages").read_text().splitlines()
    packages = [name for line in lines if line.split()[0] == group for name in line.split()[1:]]
    return {path for path in run("dpkg-query", "-L", *packages).splitlines()
            if not Path(path).is_dir()}


def main(build):
    run("cmake", "--fresh", "-S", ROOT, "-B", build, "-G", "Ninja", "-D",
        "CMAKE_BUILD_TYPE=Release", "-D", "CMAKE_DISABLE_FIND_PACKAGE_GTest=ON")
    run("cmake", "--build", build, "--target", "quillmere")
    ninja = "ninja", "-C", build, "-t"
    used = run(*ninja, "deps") + run(*ninja, "query", "build.ninja") \
        + run(*ninja, "commands", "quillmere")
    found = files_of_group("test") & {*re.findall(r"/[^\s:]+", used)}
    sys.exit(f"The program's build uses {found}" if found else 0)


if __name__ == "__main__":
    main(sys.argv[1])
