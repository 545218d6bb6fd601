"use strict";

// What the page holds of samples: unpacked, and in levels of detail.

const report = JSON.parse(document.getElementById("report").textContent);
const base = BigInt(report.base);

/** How many nanoseconds an instant is after the base: exact within 104 days of it.
    @param instant  in nanoseconds since 1970, as text or as a BigInt */
function offsetOf(instant) {
  return Number(BigInt(instant) - base);
}

/** The octets that the page has as base64. Eight zeros follow, so that whole words can be read at the end. */
function unpackOctets() {
  const letters = atob(document.getElementById("samples").textContent.trim());
  const octets = new Uint8Array(letters.length + 8);
  for (let i = 0; i < letters.length; ++i) {
    octets[i] = letters.charCodeAt(i);
  }
  return octets;
}

// How far back predictions look.
const kLags = [1, 2, 3, 4, 6, 8, 12, 16, 20, 24, 32, 40, 48, 56, 64, 80];
const kBlock = 128;
const kEscape = 24;

/** Numbers of 32 bits. In blocks, each with the number of bits that are stored as they are: the sum of
    factors times earlier numbers, and times those of other channels at the same place, divided and
    rounded down, and a difference in a Rice code. */
function unpackWords(octets, packed, channels) {
  const { at, count, shift, factors, otherFactors } = packed;
  const words = new Int32Array(count);
  const order = factors.length;
  const scale = 2 ** -shift;
  let bit = at * 8;
  const look = () => {
    const place = bit >>> 3;
    const rest = bit & 7;
    const word = octets[place] << 24 | octets[place + 1] << 16 | octets[place + 2] << 8 | octets[place + 3];
    return rest === 0 ? word : word << rest | octets[place + 4] >>> (8 - rest);
  };
  let low = 0;
  for (let i = 0; i < count; ++i) {
    if (i % kBlock === 0) {
      low = look() >>> 27;
      bit += 5;
    }
    const window = look();
    const ones = Math.clz32(~window);
    let code;
    if (ones >= kEscape) {
      bit += kEscape;
      code = look();
      bit += 32;
    } else {
      bit += ones + 1;
      code = ones;
      if (low > 0) {
        code = ones << low | look() >>> (32 - low);
        bit += low;
      }
    }
    let sum = 0;
    if (i >= 80) {
      for (let j = 0; j < order; ++j) {
        sum += factors[j] * words[i - kLags[j]];
      }
    } else {
      for (let j = 0; j < order && kLags[j] <= i; ++j) {
        sum += factors[j] * words[i - kLags[j]];
      }
    }
    for (let j = 0; j < otherFactors.length; ++j) {
      sum += otherFactors[j] * channels[j][i];
    }
    words[i] = Math.floor(sum * scale) + ((code >>> 1) ^ -(code & 1));
  }
  return words;
}

/** Reads lists of numbers in the order in which they were packed. */
class Unpacker {
  constructor(octets) {
    this.octets = octets;
    this.channels = [];  // the last ones, the last one first
  }

  /** Numbers that have to do with no others. */
  unpack(packed) {
    this.channels = [];
    return this.unpackChannel(packed);
  }

  /** Numbers of any kind: int32, float32 or float64. */
  unpackChannel(packed) {
    if (packed.kind === "int32") {
      if (this.channels.length > 0 && this.channels[0].length !== packed.words[0].count) {
        this.channels = [];
      }
      const words = unpackWords(this.octets, packed.words[0], this.channels);
      this.channels = [words, ...this.channels].slice(0, 3);
      return words;
    }
    this.channels = [];
    const [low, high] = packed.words.map((words) => unpackWords(this.octets, words, []));
    if (packed.kind === "float32") {
      return new Float32Array(low.buffer);
    }
    const both = new Int32Array(2 * low.length);
    for (let i = 0; i < low.length; ++i) {
      both[2 * i] = low[i];
      both[2 * i + 1] = high[i];
    }
    return new Float64Array(both.buffer);
  }
}

const kFold = 16;

/** Least and largest of sixteen values, of sixteen such pairs, and so on. */
function foldLevels(min, max, isGone) {
  const levels = [{ min, max }];
  let below = levels[0];
  while (below.min.length > 4 * kFold) {
    const count = Math.ceil(below.min.length / kFold);
    const level = { min: new Float64Array(count), max: new Float64Array(count) };
    for (let i = 0; i < count; ++i) {
      let least = Infinity;
      let largest = -Infinity;
      const end = Math.min(below.min.length, (i + 1) * kFold);
      for (let j = i * kFold; j < end; ++j) {
        if (levels.length === 1 && isGone && isGone[j]) {
          continue;
        }
        if (below.min[j] < least) {  // not so for NaN
          least = below.min[j];
        }
        if (below.max[j] > largest) {
          largest = below.max[j];
        }
      }
      level.min[i] = least;
      level.max[i] = largest;
    }
    levels.push(level);
    below = level;
  }
  return levels;
}

/** Values on one course of times: samples, or the least and largest of columns of them. */
class Segment {
  constructor(octets, told) {
    this.told = told;
    this.start = BigInt(told.start);
    this.x = offsetOf(told.start);
    this.count = told.count;
    this.isEnvelope = told.isEnvelope;
    const unpacker = new Unpacker(octets);
    this.times = told.times ? unpacker.unpack(told.times) : null;
    this.isGone = null;
    const turns = unpacker.unpack(told.gone);  // so many are there, so many are not, and so on
    if (turns.length > 0) {
      this.isGone = new Uint8Array(this.count);
      let from = 0;
      turns.forEach((length, turn) => {
        this.isGone.fill(turn % 2, from, from + length);
        from += length;
      });
    }
    this.channels = told.channels.map((channel) => {
      const min = unpacker.unpackChannel(channel.min || channel.values);
      const max = channel.max ? unpacker.unpackChannel(channel.max) : min;
      return { levels: foldLevels(min, max, this.isGone) };
    });
  }

  /** Nanoseconds from the start to a value. */
  timeOf(index) {
    const { samples, seconds } = this.told;
    const whole = Math.floor(index / samples);
    const rest = (index - whole * samples) * seconds;
    const due = (whole * seconds + Math.floor(rest / samples)) * 1e9 +
        Math.floor((rest % samples) * 1e9 / samples);
    return this.times ? due + this.times[index] : due;
  }

  /** The value whose time is nearest; times grow. */
  indexAt(time) {
    let low = 0;
    let high = this.count - 1;
    const { samples, seconds } = this.told;
    if (!this.times) {
      const guess = Math.floor(time * samples / (seconds * 1e9));
      low = Math.max(0, Math.min(high, guess - 2));
      high = Math.max(low, Math.min(high, guess + 3));
    }
    while (low < high) {
      const middle = (low + high) >> 1;
      if (this.timeOf(middle) < time) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    return low > 0 && time - this.timeOf(low - 1) <= this.timeOf(low) - time ? low - 1 : low;
  }

  get length() {
    return this.count === 0 ? 0 : this.timeOf(this.count - 1);
  }

  /** From one value to the next, in nanoseconds. */
  get interval() {
    return 1e9 * this.told.seconds / this.told.samples;
  }

  hasValue(index) {
    return !(this.isGone && this.isGone[index]);
  }

  /** Least and largest from one index to another, that one not included; null without any value. */
  range(channel, from, to) {
    const { levels } = this.channels[channel];
    let least = Infinity;
    let largest = -Infinity;
    let depth = 0;
    const take = (i) => {
      if (depth > 0 || !this.isGone || !this.isGone[i]) {
        least = levels[depth].min[i] < least ? levels[depth].min[i] : least;
        largest = levels[depth].max[i] > largest ? levels[depth].max[i] : largest;
      }
    };
    while (from < to) {
      if (depth + 1 < levels.length && to - from >= 2 * kFold) {
        while (from % kFold !== 0) {
          take(from++);
        }
        while (to % kFold !== 0) {
          take(--to);
        }
        from /= kFold;
        to /= kFold;
        ++depth;
      } else {
        take(from++);
      }
    }
    return least <= largest ? [least, largest] : null;
  }
}

/** How long counts are as a quantity: that of a phasor, or of a difference. */
function scaledLength(channel, counts) {
  return channel.divides ? counts / channel.factor : counts * channel.factor;
}

/** A count as a quantity, as the program computes it. */
function scaled(channel, count) {
  return scaledLength(channel, count) + (channel.offset || 0);
}

/** A stream of samples, ready to be drawn. */
function makeStream(octets, told) {
  // Places are told from where the octets of a stream begin.
  return { ...told, hidden: new Set(), segments: told.segments.map((segment) => new Segment(octets, segment)) };
}

/** The value that is nearest to an instant: its segment and index; null where none is near. */
function nearestValue(stream, instant) {
  let best = null;
  for (const segment of stream.segments) {
    if (segment.count === 0) {
      continue;
    }
    const time = Number(instant - segment.start);
    const index = segment.indexAt(time);
    const away = Math.abs(segment.timeOf(index) - time);
    if (away <= segment.interval && (best === null || away < best.away)) {
      best = { segment, index, away };
    }
  }
  return best;
}
