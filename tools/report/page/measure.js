"use strict";

// RMS and phasor of one cycle of samples, the last of which is the one at the cursor: computed as
// TalIec61850Analysis/pictures/MeasureCycle does.

const kMostHarmonics = 25;

/** Fits a direct component, a fundamental and its harmonics to samples of about one cycle, by least
    squares. */
class CycleFit {
  /** @param perCycle  samples in a cycle; need not be whole */
  constructor(perCycle) {
    this.samples = Math.round(perCycle);
    const told = Math.floor((Math.floor(this.samples * 4 / 5) - 1) / 2);
    const unknowns = 1 + 2 * Math.min(kMostHarmonics, told);
    const middle = (this.samples - 1) / 2;
    this.basis = [];
    for (let unknown = 0; unknown < unknowns; ++unknown) {
      const row = new Float64Array(this.samples);
      const harmonic = Math.ceil(unknown / 2);
      for (let i = 0; i < this.samples; ++i) {
        const angle = 2 * Math.PI * (i - middle) / perCycle * harmonic;
        row[i] = unknown % 2 === 1 ? Math.cos(angle) : unknown === 0 ? 1 : Math.sin(angle);
      }
      this.basis.push(row);
    }
    this.factor = [];
    for (let i = 0; i < unknowns; ++i) {
      this.factor.push(new Float64Array(unknowns));
      for (let j = 0; j <= i; ++j) {
        let sum = 0;
        for (let k = 0; k < this.samples; ++k) {
          sum += this.basis[i][k] * this.basis[j][k];
        }
        for (let k = 0; k < j; ++k) {
          sum -= this.factor[i][k] * this.factor[j][k];
        }
        this.factor[i][j] = i === j ? Math.sqrt(sum) : sum / this.factor[j][j];
      }
    }
  }

  /** What values are made of; the fundamental is cosine * cos(wt) + sine * sin(wt), t counted from the
      middle between the first and the last. */
  fit(values) {
    const projections = this.basis.map((row) => row.reduce((sum, each, i) => sum + each * values[i], 0));
    const found = [...projections];
    const unknowns = found.length;
    for (let i = 0; i < unknowns; ++i) {
      for (let k = 0; k < i; ++k) {
        found[i] -= this.factor[i][k] * found[k];
      }
      found[i] /= this.factor[i][i];
    }
    for (let i = unknowns - 1; i >= 0; --i) {
      for (let k = i + 1; k < unknowns; ++k) {
        found[i] -= this.factor[k][i] * found[k];
      }
      found[i] /= this.factor[i][i];
    }
    // What the fit leaves of the squares is noise of any frequency.
    const all = values.reduce((sum, each) => sum + each * each, 0);
    const fitted = found.reduce((sum, each, i) => sum + each * projections[i], 0);
    let meanSquare = Math.max(all - fitted, 0) / this.samples + found[0] * found[0];
    for (let i = 1; i < unknowns; ++i) {
      meanSquare += found[i] * found[i] / 2;
    }
    return { cosine: found[1], sine: found[2], meanSquare };
  }
}

const cycleFits = new Map();

/** The cycle up to the sample `last`. Null where samples of it are missing, or only envelopes are held. */
function measureCycle(segment, channel, last, frequency) {
  if (segment.isEnvelope || !(frequency > 0)) {
    return null;
  }
  const perCycle = 1e9 / (frequency * segment.interval);
  const count = Math.round(perCycle);
  const first = last - count + 1;
  if (count < 4 || count > 16384 || first < 0) {
    return null;
  }
  // By time too: where the publisher's time jumps, smpCnt may go on.
  const length = segment.timeOf(last) - segment.timeOf(first);
  if (Math.abs(length - (count - 1) * segment.interval) >= segment.interval / 2) {
    return null;
  }
  const values = new Float64Array(count);
  for (let i = first; i <= last; ++i) {
    const value = segment.channels[channel].levels[0].min[i];
    if (!segment.hasValue(i) || !Number.isFinite(value)) {
      return null;
    }
    values[i - first] = value;
  }
  if (!cycleFits.has(perCycle)) {
    cycleFits.set(perCycle, new CycleFit(perCycle));
  }
  const content = cycleFits.get(perCycle).fit(values);
  const sinceMiddle = 2 * Math.PI * (count - 1) / 2 / perCycle;
  return {
    rms: Math.sqrt(content.meanSquare),
    magnitude: Math.hypot(content.cosine, content.sine) / Math.SQRT2,
    angle: Math.atan2(-content.sine, content.cosine) + sinceMiddle,
  };
}
