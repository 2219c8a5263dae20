// SPDX-License-Identifier: BSD-3-Clause
// Pages made by the programs of a build, and a browser to open them in.
import {execFileSync} from "node:child_process";
import {existsSync, mkdirSync, mkdtempSync, rmSync} from "node:fs";
import {tmpdir} from "node:os";
import {dirname, join} from "node:path";
import {fileURLToPath, pathToFileURL} from "node:url";
import {chromium} from "playwright-core";

const top = join(dirname(fileURLToPath(import.meta.url)), "../..");
const bin = process.env.VIRELOCE_BIN ?? join(top, "build/release/bin");
const kit = join(bin, "vireloce-kit");
const chromiumPath = process.env.CHROMIUM ?? "/usr/bin/chromium";

/** Folder of the pictures that the tests take. */
export const shots = process.env.VIRELOCE_SHOTS ?? join(top, "build/browser");
mkdirSync(shots, {recursive: true});

const folder = mkdtempSync(join(tmpdir(), "vireloce-browser-"));

/** Runs the companion program. Its status 1 says that a result is not good, which is as well here. */
function runKit(...words) {
  try {
    execFileSync(kit, words, {stdio: ["ignore", "ignore", "pipe"]});
  } catch (error) {
    if (error.status !== 1) {
      throw error;
    }
  }
}

/** Makes the page of a placed design once. @return its path */
function pageOf(name, base, cells) {
  const page = join(folder, `${name}.html`);
  if (!existsSync(page)) {
    const out = join(folder, name, "out");
    mkdirSync(dirname(out), {recursive: true});
    runKit("place", base, "--cell-path", cells, "-o", out, "--quiet");
    runKit("view", out, "--cell-path", cells, "--colors", `${out}.colors`, "--before", base, "-o", page);
  }
  return page;
}

export const gcdPage = () => pageOf("gcd", join(top, "examples/gcd/gcd"), join(top, "examples/nangate45_color"));

/** A generated design of that many cells. */
export function generatedPage(components) {
  const base = join(folder, `d${components}`);
  if (!existsSync(`${base}.place`)) {
    runKit("gen", base, "--components", String(components));
  }
  return pageOf(`g${components}`, base, `${base}.colors`);
}

/** An input without colours: no result beside it. */
export function plainPage() {
  const page = join(folder, "plain.html");
  runKit("view", join(top, "examples/gcd/gcd"), "--cell-path", join(top, "examples/nangate45_color"), "-o", page, "--force");
  return page;
}

let browser = null;

/** Opens a page; what it logs as errors and what it asks of the network is collected. */
export async function open(path, viewport = {width: 1400, height: 900}) {
  browser ??= await chromium.launch({
    executablePath: chromiumPath,
    args: ["--no-sandbox", "--disable-gpu", "--disable-background-networking", "--disable-component-update", "--disable-sync"],
  });
  const page = await browser.newPage({viewport});
  const seen = {errors: [], requests: []};
  page.on("console", (message) => message.type() === "error" && seen.errors.push(message.text()));
  page.on("pageerror", (error) => seen.errors.push(error.message));
  page.on("request", (request) => seen.requests.push(request.url()));
  const url = pathToFileURL(path).href;
  await page.goto(url);
  await settle(page);
  return {page, seen, url};
}

export async function finish() {
  await browser?.close();
  rmSync(folder, {recursive: true});
}

/** Waits until everything is drawn, also what is drawn when the plan rests. */
export async function settle(page) {
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
  await page.waitForFunction(() => window.viewer.rests);
}

/** What the plan shows, as a text that differs for different pictures. */
export async function picture(page) {
  await settle(page);
  return page.evaluate(() => document.getElementById("base").toDataURL());
}
