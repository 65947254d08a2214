// Every page, the doors and the dialogs, looked at by a checker of accessibility, in light and dark, in English and German.
import assert from 'node:assert/strict'
import { readFileSync } from 'node:fs'
import { createRequire } from 'node:module'
import { test } from 'node:test'
import { fromWeb, openPage, setUp, withConsole } from './console.mjs'

const axe = readFileSync(createRequire(fromWeb).resolve('axe-core/axe.min.js'), 'utf8')

let console
let page
let pages

withConsole({ sample: true, signedIn: false, expected: ['status of 401'] }, started => {
  ;({ console, page } = started)
  pages = JSON.parse(console.run('pages', '--json'))
})

const everything = ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice']
/** What another scheme, and another language, can break in a page that is right otherwise. */
const ofColours = ['color-contrast', 'link-in-text-block']
const ofWords = [
  'aria-command-name', 'aria-dialog-name', 'aria-input-field-name', 'aria-meter-name', 'aria-progressbar-name', 'aria-toggle-field-name',
  'button-name', 'document-title', 'empty-heading', 'empty-table-header', 'html-has-lang', 'html-lang-valid', 'image-alt', 'input-button-name',
  'label', 'label-title-only', 'link-name', 'region', 'select-name', 'summary-name', 'valid-lang',
]

/** Fails on any finding on what is on view. */
async function judge(name, rules = everything) {
  await page.waitForFunction(() => document.querySelector('.row-waiting') === null)
  // Evaluated by the debugger, which the content security policy does not concern.
  if (!(await page.evaluate(() => 'axe' in window))) await page.evaluate(axe)
  const { violations } = await page.evaluate(runOnly => axe.run(document, { runOnly, resultTypes: ['violations'] }), rules)
  const found = violations.map(({ id, nodes }) => `${id}: ${nodes.map(node => node.html.slice(0, 160)).join('\n    ')}`)
  assert.deepEqual(found, [], name)
}

/** Does it in both schemes. The page is loaded anew in each, because the browser may keep colours of the other one for a while. */
async function inBothSchemes(judgeAll) {
  for (const colorScheme of ['dark', 'light']) {
    await page.emulateMedia({ colorScheme })
    await page.reload()
    await judgeAll(colorScheme)
  }
}

test('the doors', async () => {
  await inBothSchemes(async scheme => {
    await page.getByLabel('Set-up secret').waitFor()
    await judge(`set-up, ${scheme}`)
  })
  await setUp(page, console)
  await page.getByRole('button', { name: 'Sign out' }).click()
  await inBothSchemes(async scheme => {
    await page.getByLabel('Account').waitFor()
    await judge(`sign-in, ${scheme}`)
    await page.getByRole('button', { name: 'Sign in' }).click()
    await page.getByText('This is needed.').first().waitFor()
    await judge(`sign-in with problems, ${scheme}`)
  })
  await page.getByLabel('Account').fill('admin')
  await page.getByLabel('Password', { exact: true }).fill('correct horse battery')
  await page.getByRole('button', { name: 'Sign in' }).click()
  await page.getByRole('navigation').waitFor()
})

test('every page', async () => {
  await inBothSchemes(async scheme => {
    for (const { name, title } of pages) {
      await openPage(page, title, name)
      await judge(`${name}, ${scheme}`, scheme === 'light' ? everything : ofColours)
    }
  })
})

test('buttons with one caption have names of their own', async () => {
  await openPage(page, 'Keyword log', 'keywordlog')
  const names = await page.getByRole('button', { name: 'Blacklist' }).evaluateAll(buttons => buttons.map(b => b.getAttribute('aria-label') ?? b.textContent))
  assert.equal(names.length, 4)
  assert.equal(new Set(names).size, 4, names.join(', '))
})

test('dialogs, boxes, the search and the drawer', async () => {
  await openPage(page, 'All controls', 'allcontrols')
  const opened = [
    ['Open a dialog', page.getByRole('dialog', { name: 'A dialog' })],
    ['Ask', page.getByRole('alertdialog')],
  ]
  for (const [button, dialog] of opened) {
    await page.getByRole('button', { name: button, exact: true }).click()
    await dialog.waitFor()
    await judge(button)
    await page.keyboard.press('Escape')
    await dialog.waitFor({ state: 'detached' })
  }
  await openPage(page, 'Domains', 'domainbw')
  const transfer = page.getByRole('dialog', { name: 'Domain Blacklist' })
  await page.getByRole('group', { name: 'Black list' }).getByRole('button', { name: 'Import and export...' }).click()
  await judge('transfer, export')
  await transfer.getByRole('radio', { name: 'Import' }).click()
  await transfer.getByRole('button', { name: /^Files on the console/ }).click()
  await judge('transfer, import')
  await page.keyboard.press('Escape')
  await transfer.waitFor({ state: 'detached' })
  await openPage(page, 'All controls', 'allcontrols')
  await page.keyboard.press('Control+k')
  await page.getByRole('combobox', { name: 'Search pages, settings and entries' }).fill('list')
  await judge('search')
  await page.keyboard.press('Escape')
  await page.getByRole('button', { name: 'Offer a file' }).click()
  await page.getByRole('button', { name: 'Activity' }).click()
  await page.getByRole('heading', { name: 'Files for you' }).waitFor()
  await judge('drawer')
  await page.getByRole('navigation').getByRole('button', { name: 'Change password' }).click()
  await page.getByRole('dialog', { name: 'Change password' }).waitFor()
  await judge('password')
  await page.keyboard.press('Escape')
})

test('every page in German', async () => {
  console.run('do', 'general', 'Combo1=german')
  await page.reload()
  for (const { name } of pages) {
    await page.goto(`${console.address}#/${name}`)
    await page.locator(`main [data-control^="c-${name}-"]`).first().waitFor()
    await judge(`${name} in German`, ofWords)
  }
})
