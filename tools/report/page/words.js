"use strict";

// Instants, lengths and values as text.

const kSecond = 1000000000n;

function pad(number, digits) {
  return String(number).padStart(digits, "0");
}

/** 2023-11-14T22:13:20.123456789Z */
function instantText(instant) {
  let second = instant / kSecond;
  let rest = instant % kSecond;
  if (rest < 0n) {
    rest += kSecond;
    second -= 1n;
  }
  const day = new Date(Number(second) * 1000);
  const text = Number.isNaN(day.getTime()) ? `${second} s` : day.toISOString().slice(0, 19);
  return `${text}.${pad(rest, 9)}Z`;
}

/** A length of nanoseconds in the unit that fits: 2.25 ms. */
function lengthText(nanoseconds) {
  const size = Math.abs(nanoseconds);
  const [unit, name] = size < 1e3 ? [1, "ns"] : size < 1e6 ? [1e3, "us"] : size < 1e9 ? [1e6, "ms"] : [1e9, "s"];
  return `${Number((nanoseconds / unit).toPrecision(7))} ${name === "us" ? "\u00b5s" : name}`;
}

/** A number on an axis: 1.2k
    @param range  of the axis: its labels are to differ */
function axisText(value, range) {
  const size = Math.abs(value);
  const digits = Math.max(3, Math.min(15, Math.ceil(Math.log10(size / range || 1)) + 3));
  if (size >= 1e6) {
    return `${Number((value / 1e6).toPrecision(digits))}M`;
  }
  if (size >= 1e3) {
    return `${Number((value / 1e3).toPrecision(digits))}k`;
  }
  return size < range * 1e-9 ? "0" : String(Number(value.toPrecision(digits)));
}

/** A computed quantity, five digits of it. */
function quantityText(value) {
  const size = Math.abs(value);
  return size !== 0 && (size < 1e-4 || size >= 1e7) ? value.toExponential(4) : String(Number(value.toPrecision(5)));
}

/** An element with text and attributes. */
function make(name, text, attributes) {
  const element = document.createElement(name);
  if (text !== undefined && text !== null) {
    element.textContent = text;
  }
  for (const [key, value] of Object.entries(attributes || {})) {
    element.setAttribute(key, value);
  }
  return element;
}

function makeSvg(name, attributes, text) {
  const element = document.createElementNS("http://www.w3.org/2000/svg", name);
  for (const [key, value] of Object.entries(attributes || {})) {
    element.setAttribute(key, value);
  }
  if (text !== undefined) {
    element.textContent = text;
  }
  return element;
}

/** The colours of the theme, by the names of the style sheet's variables. */
function colour(name) {
  return getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();
}
