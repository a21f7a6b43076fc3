#!/usr/bin/env python3
"""Builds a reproducible tree of files for the benchmarks.

Same seed, same tree: names, extensions, sizes, times and the folder shape
all come from one seeded generator. Sizes are made by truncate (sparse), so
large corpora cost little disk. Examples:

  make_corpus.py --files 100000 --depth 0 OUT          one flat folder
  make_corpus.py --files 1000000 --depth 3 --fanout 8 OUT   a tree
  make_corpus.py --files 279000 --folders 21000 --content mixed OUT
      an uneven tree (each folder under a random earlier one, at most eight
      deep, some short names in capitals) whose files hold text or bytes
      for contained-text searches: lines of words, a few with the rare
      marker "quorvane_needle" or "Herr MÜLLER"
"""
import argparse
import os
import random
import sys

WORDS = ("alpha beta gamma delta report draft final notes image photo scan backup data log config "
         "readme setup build test main util core list find view tree index cache temp old new copy "
         "Invoice Letter Budget Summary Project Archive Music Video Track Album").split()
DEFAULT_EXTS = "txt:8,cpp:4,h:4,jpg:5,png:3,pdf:2,doc:1,exe:1,dll:1,log:2,:2,TXT:1,tar.gz:1,ini:1,md:2"


BINARY_EXTS = {"jpg", "png", "pdf", "doc", "exe", "dll", "tar.gz"}


def text_content(rng, size):
    """`size` bytes of lines of words; a few lines carry the search markers."""
    out, total = [], 0
    while total < size:
        line = " ".join(rng.choice(WORDS) for _ in range(rng.randint(3, 12)))
        r = rng.random()
        if r < 0.002:
            line += " quorvane_needle"
        elif r < 0.01:
            line += " Herr MÜLLER"
        out.append(line)
        total += len(line) + 1
    return ("\n".join(out) + "\n").encode("utf-8")[:size]


def parse_exts(text):
    exts, weights = [], []
    for item in text.split(","):
        name, _, weight = item.rpartition(":")
        exts.append(name)
        weights.append(float(weight or 1))
    return exts, weights


def make_name(rng, style, index):
    if style == "numbered":
        return f"file_{index:07d}"
    if style == "unicode" and rng.random() < 0.3:
        return rng.choice(WORDS) + rng.choice(["_é", "_Ä", "_ω", "_日本", " copy"]) + str(rng.randrange(100000))
    parts = [rng.choice(WORDS) for _ in range(rng.randint(1, 3))]
    sep = rng.choice(["_", "-", " ", ""])
    name = sep.join(parts)
    if rng.random() < 0.7:
        name += str(rng.randrange(1000000))
    return name


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("out", help="folder to create (must not exist, or be empty)")
    ap.add_argument("--files", type=int, default=10000, help="number of files")
    ap.add_argument("--depth", type=int, default=0, help="folder levels below OUT (0 = flat)")
    ap.add_argument("--fanout", type=int, default=10, help="sub-folders per folder")
    ap.add_argument("--seed", type=int, default=1)
    ap.add_argument("--exts", default=DEFAULT_EXTS, help="extension:weight list; empty name = no extension")
    ap.add_argument("--names", choices=["words", "numbered", "unicode"], default="words")
    ap.add_argument("--max-size", type=int, default=1 << 20, help="largest file size in bytes")
    ap.add_argument("--years", type=float, default=10, help="spread of the modification times, back from now")
    ap.add_argument("--hidden", type=float, default=0.01, help="share of names starting with a dot")
    ap.add_argument("--folders", type=int, default=0,
                    help="an uneven tree of this many folders instead of --depth/--fanout")
    ap.add_argument("--content", choices=["sparse", "text", "mixed"], default="sparse",
                    help="sparse: holes only; text: lines of words; mixed: text, random bytes for binary types")
    args = ap.parse_args()

    rng = random.Random(args.seed)
    if os.path.exists(args.out) and os.listdir(args.out):
        sys.exit(f"make_corpus: {args.out} is not empty")
    os.makedirs(args.out, exist_ok=True)

    folders = [args.out]
    level = [args.out]
    depth_of = {args.out: 0}
    while len(folders) <= args.folders:
        parent = folders[rng.randrange(len(folders))]
        if depth_of[parent] >= 8:
            continue
        name = make_name(rng, args.names, len(folders))
        if rng.random() < 0.15:
            name = name.upper()[:12]
        path = os.path.join(parent, name)
        if path in depth_of:
            continue
        os.mkdir(path)
        folders.append(path)
        depth_of[path] = depth_of[parent] + 1
    for depth in range(0 if args.folders else args.depth):
        nxt = []
        for parent in level:
            for i in range(args.fanout):
                path = os.path.join(parent, f"{rng.choice(WORDS)}_{depth}_{i}")
                os.mkdir(path)
                nxt.append(path)
        folders.extend(nxt)
        level = nxt

    exts, weights = parse_exts(args.exts)
    now = 1_700_000_000
    span = int(args.years * 365.25 * 86400)
    used = set(folders)
    for i in range(args.files):
        folder = folders[rng.randrange(len(folders))]
        while True:
            name = make_name(rng, args.names, i)
            if rng.random() < args.hidden:
                name = "." + name
            ext = rng.choices(exts, weights)[0]
            if ext:
                name += "." + ext
            path = os.path.join(folder, name)
            if path not in used:
                used.add(path)
                break
            i += 1_000_000
        size = int(rng.paretovariate(1.2) * 200) % (args.max_size + 1)
        with open(path, "wb") as f:
            if args.content == "sparse":
                f.truncate(size)
            elif args.content == "mixed" and ext.lower() in BINARY_EXTS:
                f.write(rng.randbytes(size))
            else:
                f.write(text_content(rng, size))
        t = now - rng.randrange(span)
        os.utime(path, (t, t))
    print(f"make_corpus: {args.files} files in {len(folders)} folders under {args.out}")


if __name__ == "__main__":
    main()
