// A running console and a browser on it, for the browser tests.
import assert from 'node:assert/strict'
import { spawn, execFileSync } from 'node:child_process'
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs'
import { createRequire } from 'node:module'
import { tmpdir } from 'node:os'
import { join } from 'node:path'
import { after, afterEach, before } from 'node:test'
import { fileURLToPath } from 'node:url'

const top = fileURLToPath(new URL('../../', import.meta.url))
/** Modules are those of the front end. */
export const fromWeb = join(top, 'web/package.json')
const { chromium } = createRequire(fromWeb)('playwright-core')
/** A program of the build's tests. The variable names another build folder, such as one with sanitizers. */
export const built = name => join(top, process.env.ZRL_BUILD ?? 'build/release', 'tests', name)
const program = built('zrlconsole_with_test_page')
/** How long anything may take, in milliseconds: no measure, but the end of waiting for what will not come, on any machine. */
const patience = 60_000
const pictures = join(top, 'build/screenshots')

export const account = 'admin'
export const password = 'correct horse battery'

/** The console as a program of its own, in a folder of its own. */
export class Console {
  /** `programs`: scripts that it finds, by their names. */
  static async start({ sample = false, programs = {} } = {}) {
    const console = new Console()
    console.folder = join(mkdtempSync(join(tmpdir(), 'zrl-browser-')), 'console')
    console.install(programs)
    if (sample) console.run('init', '--sample')
    await console.serve()
    return console
  }

  install(programs) {
    this.programs = join(this.folder, '../programs')
    mkdirSync(this.programs)
    for (const [name, script] of Object.entries(programs)) {
      writeFileSync(join(this.programs, name), `#!/bin/sh\n${script}\n`, { mode: 0o755 })
    }
  }

  async serve(port = 0) {
    const env = { ...process.env, PATH: `${this.programs}:${process.env.PATH}` }
    const options = ['--listen', `127.0.0.1:${port}`, ...(process.getuid() === 0 ? ['--allow-root'] : [])]
    this.process = spawn(program, ['--folder', this.folder, 'serve', ...options], { env })
    this.output = ''
    this.errors = ''
    this.process.stderr.on('data', data => (this.errors += data))
    await new Promise((resolve, reject) => {
      this.process.on('exit', status => reject(new Error(`the console ended with ${status}: ${this.errors}`)))
      this.process.stdout.on('data', data => {
        this.output += data
        if (/^Open \S+\n/m.test(this.output)) resolve()
      })
    })
    this.address = /^Open (\S+)/m.exec(this.output)[1]
  }

  get secret() {
    return /secret: (\S+)/.exec(this.output)[1]
  }

  /** Ends the program; it must end well and have complained about nothing. */
  async stop() {
    if (this.process.exitCode === null) {
      const ended = new Promise(resolve => this.process.on('exit', resolve))
      this.process.kill('SIGTERM')
      assert.equal(await ended, 0)
    }
    assert.equal(this.errors, '')
  }

  async end() {
    await this.stop()
    rmSync(join(this.folder, '..'), { recursive: true })
  }

  run(...args) {
    return execFileSync(program, ['--folder', this.folder, ...args], { encoding: 'utf8' })
  }

  sql(statement, database = 'proxy.db') {
    return execFileSync('sqlite3', ['-cmd', '.timeout 5000', join(this.folder, database), statement], {
      encoding: 'utf8',
    }).trim()
  }

  /** Asks until the database answers as expected, because the browser does not wait for it. */
  async becomes(statement, expected, database = 'proxy.db') {
    let found
    for (const end = Date.now() + patience; Date.now() < end; ) {
      found = this.sql(statement, database)
      if (found === expected) return
      await new Promise(resolve => setTimeout(resolve, 50))
    }
    assert.equal(found, expected)
  }
}

/** A browser in which nothing unexpected may be logged, and from which nothing may leave the machine. */
export class Browser {
  static async start() {
    const browser = new Browser()
    browser.chromium = await chromium.launch({
      executablePath: '/usr/bin/chromium',
      chromiumSandbox: false,
      args: [
        '--disable-gpu',
        '--disable-quic',
        '--no-first-run',
        '--disable-background-networking',
        '--disable-component-update',
        '--disable-sync',
      ],
    })
    return browser
  }

  problems = []
  /** Log lines that a test brings about on purpose. */
  expected = []

  async open(console, options = {}) {
    const context = await this.chromium.newContext({
      viewport: { width: 1440, height: 900 },
      colorScheme: 'light',
      reducedMotion: 'reduce',
      ...options,
    })
    const page = await context.newPage()
    page.setDefaultTimeout(patience)
    page.on('console', message => {
      if (message.type() !== 'warning' && message.type() !== 'error') return
      if (!this.expected.some(text => message.text().includes(text))) this.problems.push(message.text())
    })
    page.on('pageerror', error => this.problems.push(error.stack))
    page.on('dialog', dialog => {
      // The browser's own question about unsaved texts; a test that is about it answers it by itself.
      if (dialog.type() === 'beforeunload') return void dialog.accept().catch(() => {})
      this.problems.push(`a script of a stranger ran: ${dialog.message()}`)
      void dialog.dismiss()
    })
    page.on('request', request => {
      const url = new URL(request.url())
      const own = url.host === new URL(console.address).host || url.protocol === 'data:'
      if (!own) this.problems.push(`a request left the console: ${request.url()}`)
    })
    await page.goto(console.address)
    return page
  }

  /** Fails if something unexpected has been logged since it was asked last. */
  check() {
    assert.deepEqual(this.problems.splice(0), [])
  }

  async end() {
    await this.chromium.close()
    this.check()
  }
}

/**
 * Gives the tests of a file a console and a page of a browser on it, signed in unless told otherwise: `given` gets them before the
 * first test, and may prepare something. A test in which the browser logs something unexpected fails. After the last test both are ended, whatever came of the
 * tests: a program that still runs would keep the file from ending.
 */
export function withConsole({ sample, programs, expected = [], signedIn = true, context = {} }, given) {
  let console
  let browser
  before(async () => {
    console = await Console.start({ sample, programs })
    browser = await Browser.start()
    browser.expected = [...expected]
    const page = await browser.open(console, context)
    if (signedIn) await setUp(page, console)
    await given({ console, browser, page })
  })
  afterEach(() => browser?.check())
  after(async () => {
    const ends = await Promise.allSettled([browser?.end(), console?.end()])
    const reasons = ends.filter(end => end.status === 'rejected').map(end => end.reason)
    if (reasons.length > 0) throw reasons.length === 1 ? reasons[0] : new AggregateError(reasons, reasons.join('\n'))
  })
}

export async function setUp(page, console) {
  await page.getByLabel('Set-up secret').fill(console.secret)
  await page.getByLabel('New password', { exact: true }).fill(password)
  await page.getByLabel('Repeat the new password').fill(password)
  await page.getByRole('button', { name: 'Set up and sign in' }).click()
  await page.getByRole('navigation').waitFor()
}

export async function signIn(page, secret = password) {
  await page.getByLabel('Account').fill(account)
  await page.getByLabel('Password', { exact: true }).fill(secret)
  await page.getByRole('button', { name: 'Sign in' }).click()
  await page.getByRole('navigation').waitFor()
}

/** Opens a page from the sidebar and waits until it is drawn. */
export async function openPage(page, title, name) {
  await follow(page, page.getByRole('navigation').getByRole('link', { name: title, exact: true, includeHidden: true }), name)
}

/** The same, whatever its title is in the language of the moment. */
export async function openNamed(page, name) {
  await follow(page, page.getByRole('navigation').locator(`a[href$="/${name}"]`), name)
}

async function follow(page, link, name) {
  await link.waitFor({ state: 'attached' })
  if (!(await link.isVisible())) {
    const group = await link.evaluate(element => element.closest('ul').id)
    await page.getByRole('navigation').locator(`[aria-controls="${group}"]`).click()
  }
  await link.click()
  // What a test has typed and not saved is of no use to it any more.
  const leave = page.getByRole('alertdialog').getByRole('button', { name: /^(Leave|Verlassen)$/ })
  const shown = page.locator(`main [data-control^="c-${name}-"]`).first()
  await shown.or(leave).first().waitFor()
  if (await leave.isVisible()) await leave.click()
  await shown.waitFor()
}

/** Drops a text file of this name on an element, as from the desktop. */
export const drop = (page, selector, name, text) =>
  page.evaluate(
    ([where, called, content]) => {
      const data = new DataTransfer()
      data.items.add(new File([content], called))
      const target = document.querySelector(where)
      for (const kind of ['dragover', 'drop']) {
        target.dispatchEvent(new DragEvent(kind, { dataTransfer: data, bubbles: true, cancelable: true }))
      }
    },
    [selector, name, text],
  )

const widths = { wide: [1440, 900], narrow: [390, 844] }

/** Makes sure that nothing sticks out of the window, wide and narrow. Takes pictures too, in both schemes, if ZRL_PICTURES is set. */
export async function picture(page, name) {
  const before = page.viewportSize()
  for (const [shape, [width, height]] of Object.entries(widths)) {
    await page.setViewportSize({ width, height })
    // The page follows in the next frame.
    await page.evaluate(() => new Promise(resolve => requestAnimationFrame(() => requestAnimationFrame(resolve))))
    const overflow = await page.evaluate(() => document.documentElement.scrollWidth - window.innerWidth)
    assert.ok(overflow <= 0, `${name} sticks out by ${overflow} pixels at ${width}`)
    if (process.env.ZRL_PICTURES) await takePictures(page, `${name}-${shape}`)
  }
  await page.setViewportSize(before)
}

async function takePictures(page, name) {
  mkdirSync(pictures, { recursive: true })
  for (const colorScheme of ['dark', 'light']) {
    await page.emulateMedia({ colorScheme })
    await page.waitForTimeout(150)
    await page.screenshot({ path: join(pictures, `${name}-${colorScheme}.png`) })
  }
}
