// What people do with long lists: find what they added, sort, choose several entries, work by keyboard, and come back to where they were.
import assert from 'node:assert/strict'
import { test } from 'node:test'
import { openPage, picture, withConsole } from './console.mjs'

let console
let page

withConsole({ sample: true }, started => ({ console, page } = started))

const group = name => page.getByRole('group', { name, exact: true })
const rows = box => box.locator('.list-row .row-text').allTextContents()

test('a new entry is brought into view and marked, also under a filter and in another order', async () => {
  await openPage(page, 'Domains', 'domainbw')
  const black = group('Black list')
  await page.getByLabel('Domain', { exact: true }).fill(' Newcomer.example ')
  await black.getByRole('button', { name: 'Add' }).click()
  const added = black.locator('.list-row.added')
  await added.getByText(/newcomer\.example/i).waitFor()
  assert.ok(await added.evaluate(row => row.getBoundingClientRect().bottom <= row.closest('.list-rows').getBoundingClientRect().bottom + 1))
  await picture(page, 'added')

  // The list stands at its end now. Another entry below it is brought into view as well, and the list comes to rest.
  await page.getByLabel('Domain', { exact: true }).fill('newcomer-two.example')
  await black.getByRole('button', { name: 'Add' }).click()
  await added.getByText('newcomer-two.example').waitFor()
  await page.waitForTimeout(400)
  const places = await added.evaluate(async row => {
    const list = row.closest('.list-rows')
    const seen = []
    for (let frame = 0; frame < 10; ++frame) {
      seen.push(list.scrollTop)
      await new Promise(resolve => requestAnimationFrame(resolve))
    }
    return seen
  })
  assert.equal(new Set(places).size, 1)
  assert.ok(await added.evaluate(row => row.getBoundingClientRect().bottom <= row.closest('.list-rows').getBoundingClientRect().bottom + 1))

  await black.getByRole('textbox', { name: /^Filter/ }).fill('royal')
  await black.getByText(/^[\d,]+ of 17,/).waitFor()
  await black.getByRole('combobox', { name: /^Order/ }).selectOption('text')
  await page.getByLabel('Domain', { exact: true }).fill('another.newcomer.example')
  await black.getByRole('button', { name: 'Add' }).click()
  await black.locator('.list-row.added').getByText('another.newcomer.example').waitFor()
  await page.waitForFunction(() => document.getElementById('c-domainbw-List2-filter').value === '')
})

test('a list is sorted from A to Z and by domain', async () => {
  const black = group('Black list')
  const order = black.getByRole('combobox', { name: /^Order/ })
  const sorted = async (choice, key) => {
    await order.selectOption(choice)
    await black.locator('.list-frame:not([data-filtering])').waitFor()
    await black.getByRole('listbox').press('Home')
    await page.waitForTimeout(300)
    const shown = (await rows(black)).map(row => key(row.toLowerCase()))
    assert.ok(shown.length > 10)
    assert.deepEqual(shown, shown.toSorted())
  }
  await sorted('text', row => row)
  await sorted('domain', row => row.split('.').reverse().join('\u0001'))
  await order.selectOption('added')
})

test('several entries are chosen by keyboard and removed together', async () => {
  for (let i = 0; i < 30; ++i) console.sql(`INSERT INTO blacklist (entry) VALUES ('quux${String(i).padStart(2, '0')}.example')`)
  await page.getByRole('button', { name: 'Refresh' }).click()
  const black = group('Black list')
  const list = black.getByRole('listbox')
  await black.getByRole('textbox', { name: /^Filter/ }).fill('quux')
  await black.getByText('30 of').waitFor()
  await list.getByText('quux05.example').click()
  for (let i = 0; i < 3; ++i) await list.press('Shift+ArrowDown')
  await black.getByText('4 chosen').waitFor()
  await list.getByText('quux20.example').click({ modifiers: ['Control'] })
  await black.getByText('5 chosen').waitFor()
  await picture(page, 'several')
  await list.press('Delete')
  const question = page.getByRole('alertdialog')
  await question.getByText('Remove 5 entries from "Black list"?').waitFor()
  await question.getByRole('button', { name: 'Remove' }).click()
  await console.becomes("select count(*) from blacklist where entry like 'quux%'", '25')
  assert.equal(console.sql("select count(*) from blacklist where entry in ('quux05.example','quux08.example','quux20.example')"), '0')
  assert.equal(console.sql("select count(*) from blacklist where entry='quux09.example'"), '1')

  await black.getByText('25 of').waitFor()
  await list.press('Control+a')
  await black.getByText('25 chosen').waitFor()
  await black.getByRole('button', { name: 'Remove', exact: true }).last().click()
  await page.getByRole('alertdialog').getByRole('button', { name: 'Remove' }).click()
  await console.becomes("select count(*) from blacklist where entry like 'quux%'", '0')
  await black.getByRole('textbox', { name: /^Filter/ }).fill('')
})

test('Enter adds where one button can, and Delete removes the chosen entry', async () => {
  await openPage(page, 'Local users', 'localuser')
  const entry = page.getByRole('main').getByRole('textbox').first()
  await entry.fill('enter@mirvan.example')
  await entry.press('Enter')
  const row = page.locator('.list-row.added')
  await row.getByText('enter@mirvan.example').waitFor()
  await row.click()
  await page.getByRole('listbox').first().press('Delete')
  await page.waitForFunction(() => ![...document.querySelectorAll('.row-text')].some(text => text.textContent === 'enter@mirvan.example'))

  // Here two lists could be meant.
  await openPage(page, 'Domains', 'domainbw')
  await page.getByLabel('Domain', { exact: true }).fill('nowhere.example')
  await page.getByLabel('Domain', { exact: true }).press('Enter')
  await page.waitForTimeout(300)
  assert.equal(console.sql("select (select count(*) from blacklist where entry='nowhere.example') + (select count(*) from whitelist where entry='nowhere.example')"), '0')
})

test('a button without what it needs says so, and nothing happens', async () => {
  await openPage(page, 'IP log', 'iplog')
  const field = page.getByLabel('IP number', { exact: true })
  await field.fill('')
  await group('IP Lists').getByRole('button', { name: 'Telnet' }).click()
  await page.getByRole('alert').getByText('Fill in “IP number” first.').waitFor()
  await page.waitForFunction(() => document.activeElement?.id === 'c-iplog-IPNumber')
  await picture(page, 'needed')
  await field.fill('192.0.2.1')
  await page.getByText('Fill in “IP number” first.').waitFor({ state: 'detached' })
  assert.equal(await page.getByRole('region', { name: 'Programs' }).count(), 0)
})

test('a row that only the page has chosen does not look chosen', async () => {
  await openPage(page, 'Domains', 'domainbw')
  const black = group('Black list')
  // The press chooses: a list that scrolls meanwhile may have put another row below the pointer when it is released.
  await black.locator('.list-row').nth(3).hover()
  await page.mouse.down()
  await page.waitForFunction(() => document.getElementById('c-domainbw-Text1').value !== '')
  await page.mouse.up()
  assert.equal(await black.locator('.list-row.restored').count(), 0)
  await page.getByLabel('Domain', { exact: true }).fill('other.example')
  await page.getByRole('button', { name: 'Refresh' }).click()
  await black.locator('.list-row.restored').waitFor()
})

test('filters, orders and places are there again after a reload and on the way back', async () => {
  const black = group('Black list')
  await black.getByRole('textbox', { name: /^Filter/ }).fill('casino')
  await black.getByRole('combobox', { name: /^Order/ }).selectOption('text')
  const white = group('White list')
  await white.getByRole('listbox').evaluate(list => list.scrollTo(0, 2800))
  await black.getByText(/^[\d,]+ of 17,/).waitFor()
  await page.waitForTimeout(600)
  const counted = await black.locator('.count').textContent()
  const there = async () => {
    await page.waitForFunction(() => document.querySelector('[id="c-domainbw-List2-filter"]')?.value === 'casino')
    await black.getByText(counted.trim()).waitFor()
    assert.equal(await black.getByRole('combobox', { name: /^Order/ }).inputValue(), 'text')
    await page.waitForFunction(() => Math.abs(document.getElementById('c-domainbw-List1').scrollTop - 2800) < 30)
  }
  await openPage(page, 'General', 'general')
  await page.goBack()
  await there()
  await page.reload()
  await there()
})

test('notices lie above a dialog, and their files can be fetched there', async () => {
  const black = group('Black list')
  await black.getByRole('button', { name: 'Import and export...' }).click()
  const dialog = page.getByRole('dialog', { name: 'Domain Blacklist' })
  await dialog.getByRole('button', { name: /^Files on the console/ }).click()
  await dialog.getByRole('button', { name: 'Export', exact: true }).click()
  const notice = page.getByRole('region', { name: 'Notices' })
  const [download] = await Promise.all([page.waitForEvent('download'), notice.getByRole('link', { name: /^Download/ }).click()])
  assert.match(download.suggestedFilename(), /\.txt$/)
  await page.keyboard.press('Escape')
  await dialog.waitFor({ state: 'detached' })
})
