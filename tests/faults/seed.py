"""Reads the list of faults and writes each into its file as a choice made when the program runs."""

import re
from pathlib import Path

TOKEN = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])*\'|[A-Za-z_]\w*|[\d.][\w.\']*|\s+|[-+*/%&|<>=!^]=|::|->|&&|\|\||.')
DECLARATION = re.compile(r'(const|constexpr|static|auto)\b|[\w:]+(<.*>)?[&*]* +[&*]*\w+( = |\{|;)')
OPENING, CLOSING = '([{', ')]}'

# What a choice may look like is no fault of the product's.
WARNINGS = ['all', 'extra', 'conversion', 'sign-conversion', 'double-promotion', 'shadow', 'float-equal']

# In every file that has a fault. TRELMIX_FAULT holds the number of the one that is there.
CHOICE = ''.join(f'#pragma GCC diagnostic ignored "-W{name}"\n' for name in WARNINGS) + '''#ifndef TRELMIX_SEEDED_FAULT
#define TRELMIX_SEEDED_FAULT
#include <cstdlib>
inline bool trelmixSeededFault(int number) {
    static const int chosen = [] {
        const char* text = std::getenv("TRELMIX_FAULT");
        return text != nullptr ? std::atoi(text) : 0;
    }();
    return chosen == number;
}
#endif
'''


class Stale(Exception):
    pass


class Fault:
    def __init__(self, number, title, path, lines):
        self.number, self.title, self.path = number, title, path
        self.asItIs = [line[1:].strip() for line in lines if line[0] != '+']
        self.asItWouldBe = [line[1:].strip() for line in lines if line[0] != '-']
        removed = [line[1:].strip() for line in lines if line[0] == '-']
        added = [line[1:].strip() for line in lines if line[0] == '+']
        if len(removed) != 1 or len(added) > 1:
            raise Stale(f'fault {number}: one line "-" and at most one "+" are needed')
        self.good, self.bad = removed[0], added[0] if added else None
        self.offset = next(i for i, line in enumerate(lines) if line[0] == '-')
        self.test = f'::trelmixSeededFault({number})'

    def place(self, source):
        """The first line of the block in the file's lines."""
        stripped = [line.strip() for line in source]
        count = len(self.asItIs)
        found = [i for i in range(len(source) - count + 1) if stripped[i:i + count] == self.asItIs]
        if len(found) != 1:
            raise Stale(f'{self.path}: found {len(found)} times, not once: {self.good}')
        return found[0]

    def seed(self, source):
        """The file's lines with the choice in them; their number does not change."""
        first = self.place(source)
        at = first + self.offset
        before = next((line.strip() for line in reversed(source[:at]) if line.strip() and '//' not in line), '')
        if isStatement(self.good) and before[-1:] in (';', '{', '}', ':'):
            if self.bad is None:
                source[at] = f'if (!{self.test}) {{ {self.good} }}'
                return
            if not DECLARATION.match(self.good) or self.good.startswith('return'):
                source[at] = f'if ({self.test}) {{ {self.bad} }} else {{ {self.good} }}'
                return
        if self.bad is None:
            raise Stale(f'{self.path}: only a whole statement can be gone: {self.good}')
        text = choiceOfExpressions('\n'.join(self.asItIs), '\n'.join(self.asItWouldBe), self.test)
        source[first:first + len(self.asItIs)] = [text] + [''] * (len(self.asItIs) - 1)


def isStatement(line):
    return line.endswith(';') and isBalanced(TOKEN.findall(line))


def isBalanced(tokens):
    depth = 0
    for token in tokens:
        depth += (token in OPENING) - (token in CLOSING)
        if depth < 0:
            return False
    return depth == 0


def isExpression(tokens):
    text = ''.join(tokens).strip()
    depth = 0
    for token in tokens:
        depth += (token in OPENING) - (token in CLOSING)
        if depth == 0 and token in (',', ';', '='):
            return False
    return bool(text) and text[0] != '{' and isBalanced(tokens)


def choiceOfExpressions(good, bad, test):
    """The smallest whole expression around what differs becomes a conditional one."""
    good, bad = TOKEN.findall(good), TOKEN.findall(bad)
    left = 0
    while left < min(len(good), len(bad)) and good[left] == bad[left]:
        left += 1
    tail = 0
    while tail < min(len(good), len(bad)) - left and good[-1 - tail] == bad[-1 - tail]:
        tail += 1
    while True:
        left = edge(good, left - 1, -1, CLOSING, OPENING) + 1
        tail = len(good) - edge(good, len(good) - tail, 1, OPENING, CLOSING)
        one, other = good[left:len(good) - tail], bad[left:len(bad) - tail]
        if isExpression(one) and isExpression(other):
            choice = f'({test} ? ({"".join(other).strip()}) : ({"".join(one).strip()}))'
            return ''.join(good[:left]) + ' ' + choice + ''.join(good[len(good) - tail:])
        start, end = ''.join(good[:left])[-1:], ''.join(good[len(good) - tail:])[:1]
        if not start or not end or (start not in ',([{' and end != ','):
            raise Stale('no expression around the difference: ' + ''.join(good))
        # Over the commas first, then out of the brackets.
        left -= start == ',' or (start in OPENING and end in CLOSING)
        tail -= end == ',' or (start in OPENING and end in CLOSING)


def edge(tokens, i, step, inward, outward):
    """Where the expression that reaches over tokens[i] ends."""
    depth = 0
    while 0 <= i < len(tokens):
        token = tokens[i]
        if token in inward:
            depth += 1
        elif token in outward:
            if depth == 0:
                break
            depth -= 1
        elif depth == 0 and token in (',', ';', '=', 'return'):
            break
        i += step
    return i


def readList(path):
    faults, block = [], []

    def finish():
        if block:
            faults.append(Fault(len(faults) + 1, block[0][1:].strip(), block[1], block[2:]))
            block.clear()

    for line in path.read_text().splitlines():
        if not line.strip():
            finish()
        elif block or not line.startswith('#'):
            block.append(line)
    finish()
    return faults


def seedAll(faults, folder):
    """Changed files by their path; raises `Stale` with everything that was not found."""
    changed, complaints = {}, []
    for fault in faults:
        try:
            if fault.path not in changed:
                changed[fault.path] = Path(folder, fault.path).read_text().splitlines()
            fault.seed(changed[fault.path])
        except (OSError, Stale) as error:
            complaints.append(f'fault {fault.number}: {error}')
    if complaints:
        raise Stale('\n'.join(complaints))
    return {path: CHOICE + '\n'.join(lines) + '\n' for path, lines in changed.items()}
