// A browser driver as the bench's child process. Lines in, lines out:
//
//   start        launch the browser that "open" uses      -> "ok"
//   open URL     page.goto until the load event, then the -> "MS BYTES"
//                reply's body, in the browser kept open
//   post URL     as open, the request made a POST on its way (playwright)
//   launch URL   the same from launch to close, in a      -> "MS BYTES"
//                browser of its own
//
// MS is the time inside this process. A failure answers "error TEXT". The end of standard input
// closes the browser and ends the process.
//
//   usage: node peer.js playwright|puppeteer CHROMIUM
import { createInterface } from 'node:readline';

const [driver, executablePath] = process.argv.slice(2);
const root = process.getuid() === 0;
const options = { executablePath, headless: true, args: root ? ['--no-sandbox'] : [] };

const drivers = {
  async playwright() {
    const { chromium } = await import('playwright-core');
    return { launch: () => chromium.launch(options), body: (response) => response.body() };
  },
  async puppeteer() {
    const { default: puppeteer } = await import('puppeteer-core');
    return { launch: () => puppeteer.launch(options), body: (response) => response.buffer() };
  },
};

const { launch, body } = await drivers[driver]();
let browser;
let page;

async function read(openPage, url) {
  const bytes = await body(await openPage.goto(url, { waitUntil: 'load' }));
  return bytes.length;
}

async function timed(work) {
  const begin = performance.now();
  const length = await work();
  return `${(performance.now() - begin).toFixed(3)} ${length}`;
}

const commands = {
  async start() {
    browser = await launch();
    page = await browser.newPage();
    return 'ok';
  },
  open: (url) => timed(() => read(page, url)),
  post: (url) =>
    timed(async () => {
      const headers = { 'Content-Type': 'application/x-www-form-urlencoded' };
      const change = { method: 'POST', postData: 'vertrag=4711&betrag=6%2C40' };
      await page.route(url, (route) =>
        route.continue({ ...change, headers: { ...route.request().headers(), ...headers } }),
        { times: 1 });
      return read(page, url);
    }),
  launch: (url) =>
    timed(async () => {
      const ownBrowser = await launch();
      const length = await read(await ownBrowser.newPage(), url);
      await ownBrowser.close();
      return length;
    }),
};

for await (const line of createInterface({ input: process.stdin })) {
  const [command, url] = line.split(' ');
  const answer = await commands[command](url).catch((failure) => `error ${failure.message}`);
  console.log(answer.replaceAll('\n', ' '));
}
await browser?.close();
