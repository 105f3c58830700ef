#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Tovek developers
# SPDX-License-Identifier: MIT
"""Scores recognised words, and compares with the engine's own command line.

  score_ocr.py SET [--every N] [--cli] [--keep FILE] -- PROGRAM

SET is a folder of NAME.png with NAME.json: {"words": [{"text", "box", "cell", "ignore"?}]}, boxes
as [x, y, width, height] in pixels from the top left; the default is $TOVEK_OCR_SET. PROGRAM gets
all pictures as arguments and prints one JSON line a picture: {"image", "words": [{"text", "box"}],
"ms"} (bench/ocr_eval does). --cli also runs `tesseract PICTURE - --psm 3 tsv` once a picture in
the same run, one after the other, and prints the ratio of the median times.

A word counts as found when a recognised word has the same text (typographic quotes and dashes
equal their ASCII forms) and its box overlaps the true ink or line box with IoU >= 0.5; one to one.
Words marked "ignore" are not judged, nor are recognised words that lie on them.
"""
import argparse, collections, glob, json, os, statistics, subprocess, sys, time

FOLD = str.maketrans({**dict.fromkeys('\u2018\u2019\u201a\u2032', "'"),
                      **dict.fromkeys('\u201c\u201d\u201e\u2033', '"'),
                      **dict.fromkeys('\u2010\u2011\u2012\u2013\u2014\u2015\u2212', '-')})


def fold(text):
    return text.translate(FOLD).replace('\u2026', '...')


def overlap(a, b):
    width = min(a[0] + a[2], b[0] + b[2]) - max(a[0], b[0])
    height = min(a[1] + a[3], b[1] + b[3]) - max(a[1], b[1])
    return width * height if width > 0 and height > 0 else 0


def iou(a, b):
    both = overlap(a, b)
    return both / (a[2] * a[3] + b[2] * b[3] - both) if both else 0


def score(truth, read):
    """Found, judged true words, judged read words."""
    same = collections.defaultdict(list)
    for j, t in enumerate(truth):
        same[fold(t['text'])].append((j, t))
    pairs = sorted(((max(iou(w['box'], t['box']), iou(w['box'], t.get('cell', t['box']))), i, j)
                    for i, w in enumerate(read) for j, t in same[fold(w['text'])]), reverse=True)
    used_read, used_true = set(), set()
    for value, i, j in pairs:
        if value >= 0.5 and i not in used_read and j not in used_true:
            used_read.add(i)
            used_true.add(j)
    is_judged = [not t.get('ignore') and any('!' <= c <= '~' for c in fold(t['text'])) for t in truth]
    found = sum(is_judged[j] for j in used_true)
    unjudged = [t.get('cell', t['box']) for j, t in enumerate(truth) if not is_judged[j]]
    on_ignored = sum(1 for w in read if any(overlap(w['box'], box) > 0.4 * w['box'][2] * w['box'][3]
                                            for box in unjudged))
    return found, sum(is_judged), len(read) - on_ignored


def command_line(picture):
    start = time.monotonic()
    out = subprocess.run(['tesseract', picture, '-', '--psm', '3', 'tsv'], capture_output=True,
                         text=True).stdout
    ms = (time.monotonic() - start) * 1000
    words = []
    for line in out.split('\n')[1:]:
        cells = line.split('\t')
        if len(cells) == 12 and cells[0] == '5' and cells[11].strip():
            words.append({'text': cells[11].strip(), 'box': [float(v) for v in cells[6:10]]})
    return {'words': words, 'ms': ms}


def report(name, pictures, answers):
    found = true = read = 0
    for picture in pictures:
        with open(picture[:-3] + 'json') as file:
            truth = json.load(file)['words']
        f, t, r = score(truth, answers.get(picture, {'words': []})['words'])
        found, true, read = found + f, true + t, read + r
    precision, recall = found / max(1, read), found / max(1, true)
    f1 = 2 * precision * recall / max(1e-9, precision + recall)
    median = statistics.median(a['ms'] for a in answers.values())
    print(f'{name:12s} pictures {len(pictures)} words {true} precision {precision:.4f} '
          f'recall {recall:.4f} F1 {f1:.4f} median {median:.0f} ms')
    return median


def main():
    split = sys.argv.index('--') if '--' in sys.argv else len(sys.argv)
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument('set', nargs='?', default=os.environ.get('TOVEK_OCR_SET'))
    parser.add_argument('--every', type=int, default=1)
    parser.add_argument('--cli', action='store_true')
    parser.add_argument('--keep')
    arguments = parser.parse_args(sys.argv[1:split])
    program = sys.argv[split + 1:]
    if not arguments.set or not program:
        sys.exit(__doc__)
    pictures = sorted(glob.glob(os.path.join(arguments.set, '*.png')))[::arguments.every]
    out = subprocess.run(program + pictures, stdout=subprocess.PIPE, text=True, check=True).stdout
    if arguments.keep:
        with open(arguments.keep, 'w') as file:
            file.write(out)
    ours = {a['image']: a for a in map(json.loads, out.split('\n')[:-1])}
    median = report('ours', pictures, ours)
    if arguments.cli:
        theirs = report('command line', pictures, {p: command_line(p) for p in pictures})
        print(f'ratio of the medians {median / theirs:.3f} (1/{theirs / median:.1f})')


if __name__ == '__main__':
    main()
