// Takes pictures of the front end against the mock, for looking at: node dev/look.js FOLDER [PORT]
import { mkdirSync } from 'node:fs'
import { chromium } from 'playwright-core'

const folder = process.argv[2] ?? 'shots'
const port = process.argv[3] ?? '8026'
mkdirSync(folder, { recursive: true })
const browser = await chromium.launch({
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
  chromiumSandbox: false,
  args: ['--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking', '--disable-component-update', '--disable-sync'],
})
const sizes = { wide: { width: 1440, height: 900 }, tablet: { width: 820, height: 1180 }, phone: { width: 390, height: 844 } }

for (const [size, viewport] of Object.entries(sizes)) {
  for (const colorScheme of ['light', 'dark']) {
    const touch = size !== 'wide'
    const context = await browser.newContext({ viewport, colorScheme, hasTouch: touch, isMobile: touch })
    const page = await context.newPage()
    page.on('console', message => {
      if (['error', 'warning'].includes(message.type())) console.log(`${size} ${colorScheme}: ${message.text()}`)
    })
    page.on('pageerror', error => console.log(`${size} ${colorScheme}: ${error.stack}`))
    const shot = name => page.screenshot({ path: `${folder}/${size}-${colorScheme}-${name}.png` })
    const open = async name => {
      await page.evaluate(hash => (location.hash = hash), `#/${name}`)
      await page.waitForTimeout(500)
    }
    await page.goto(`http://127.0.0.1:${port}/`)
    await page.waitForSelector('form')
    await shot('sign-in')
    await page.getByLabel('Account').fill('admin')
    await page.getByLabel('Password', { exact: true }).fill('correct horse')
    await page.keyboard.press('Enter')
    await page.waitForSelector('.frame')
    await page.waitForTimeout(300)
    await shot('general')
    const wider = await page.evaluate(() => document.documentElement.scrollWidth > innerWidth)
    if (wider) console.log(`${size}: the page is wider than the screen`)
    await page.locator('[data-control="c-general-spf"] input').click()
    await page.waitForTimeout(350)
    await shot('toast')
    for (const name of ['domainbw', 'iplog', 'everything', 'million']) {
      await open(name)
      const inner = await page.evaluate(() => {
        const main = document.querySelector('.page')
        return main.scrollWidth > main.clientWidth
      })
      if (inner) console.log(`${size} ${name}: content is wider than the page`)
      await shot(name)
    }
    await open('everything')
    for (const part of ['Lists', 'Actions']) {
      await page.locator(`[data-control="c-everything-${part}"]`).scrollIntoViewIfNeeded()
      await page.waitForTimeout(200)
      await shot(`everything-${part.toLowerCase()}`)
    }
    await page.getByRole('button', { name: 'Failing statements', exact: true }).click()
    await page.waitForTimeout(400)
    await shot('failure-toast')
    await page.getByRole('button', { name: 'Slow action', exact: true }).click()
    await page.waitForTimeout(1400)
    await shot('busy')
    await page.waitForTimeout(2500)
    await page.getByRole('button', { name: 'Question', exact: true }).click()
    await page.waitForTimeout(400)
    await shot('box')
    await page.getByRole('button', { name: 'Cancel', exact: true }).click()
    await page.getByRole('button', { name: 'Modal dialog', exact: true }).click()
    await page.waitForTimeout(500)
    await shot('dialog')
    await page.keyboard.press('Escape')
    await page.waitForTimeout(300)
    await page.getByRole('button', { name: 'Modeless dialog', exact: true }).click()
    await page.waitForTimeout(400)
    await shot('modeless')
    await page.locator('.floating .modal-head button').click()
    await page.keyboard.press('Control+k')
    await page.keyboard.type('check')
    await page.waitForTimeout(400)
    await shot('palette')
    await page.keyboard.press('Escape')
    await page.locator('.activity-button').click()
    await page.waitForTimeout(400)
    await page.locator('.entry').nth(1).click()
    await page.waitForTimeout(200)
    await shot('activity')
    if (size !== 'wide') {
      await page.locator('.drawer .icon-button').click()
      await page.locator('.menu-button').click()
      await page.waitForTimeout(400)
      await shot('menu')
    }
    await context.close()
  }
}
await browser.close()
