#!/usr/bin/env python3
# Builds one period (100 points) of the sampled glottal source, a glottal-flow derivative:
# the five fixed points that open the period and the bounce decaying after them; an opening
# lobe (flow rising as a raised cosine) peaking at exactly 770; a closing slope (flow falling
# as a quarter cosine) down to exactly -2449 at glottal closure, the two lobes enclosing equal
# areas so that the flow returns to zero; then an exponential return phase that leads back
# into the first point of the next period. Prints the values as rows of ten.
import math

HEAD = [-310, -400, 530, 356, 224]
PEAK, TROUGH = 770.0, -2449.0
OPEN_START, CLOSURE = 8, 88
OPEN_LEN = CLOSURE - OPEN_START
RISE = OPEN_LEN / (1.0 + PEAK / -TROUGH)  # equal areas: PEAK * RISE == -TROUGH * FALL
FALL = OPEN_LEN - RISE


def flow_derivative(t):
    if t <= 0 or t > OPEN_LEN:
        return 0.0
    if t <= RISE:
        return PEAK * math.sin(math.pi * t / RISE)
    return TROUGH * math.sin(0.5 * math.pi * (t - RISE) / FALL)


values = [float(v) for v in HEAD]
for k in range(len(HEAD), CLOSURE + 1):
    values.append(224.0 * 0.55 ** (k - 4) + flow_derivative(k - OPEN_START))
for k in range(CLOSURE + 1, 100):
    values.append(-330.0 + (TROUGH + 330.0) * math.exp(-(k - CLOSURE) / 2.5))

ints = [int(round(v)) for v in values]
# The sampled lobe peak falls between two points: pin the largest one to the exact maximum.
ints[max(range(len(HEAD), CLOSURE), key=lambda i: ints[i])] = int(PEAK)
assert len(ints) == 100 and ints[:5] == HEAD
assert min(ints) == int(TROUGH) and max(ints) == int(PEAK), (min(ints), max(ints))
for row in range(0, 100, 10):
    print("    " + ", ".join("%d" % v for v in ints[row:row + 10]) + ",")
