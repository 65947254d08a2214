// Every kind of control in the browser, with texts that strangers wrote and lists of a million rows.
import assert from 'node:assert/strict'
import { writeFileSync } from 'node:fs'
import { join } from 'node:path'
import { test } from 'node:test'
import { openPage, picture, withConsole } from './console.mjs'

let console
let browser
let page

withConsole({}, async started => {
  ;({ console, browser, page } = started)
  await openPage(page, 'All controls', 'allcontrols')
  await page.getByText('Every kind of control').waitFor()
})

test('the form looks right in every shape', async () => {
  await picture(page, 'controls-top')
  await page.getByRole('button', { name: 'Open a dialog' }).scrollIntoViewIfNeeded()
  await picture(page, 'controls-bottom')
})

test('typing reaches the page, and what the page answers does not disturb it', async () => {
  const entry = page.getByRole('textbox', { name: 'Entry' })
  await entry.pressSequentially('The quick brown fox', { delay: 15 })
  await page.getByText('You typed: The quick brown fox').waitFor()
  assert.equal(await entry.inputValue(), 'The quick brown fox')
})

test('what strangers wrote is text and nothing else', async () => {
  const list = page.getByRole('listbox', { name: 'Hostile entries' })
  await list.scrollIntoViewIfNeeded()
  await list.getByText('<img src=x onerror=alert(1)>').click()
  await page.getByText('You typed: <img src=x onerror=alert(1)>').waitFor()
  await page.getByText('<b>HTML</b> & "quotes" <script>alert(1)</script>').waitFor()
  assert.equal(await page.locator('main img, main script, main b').count(), 0)
  await picture(page, 'hostile')
})

test('choices, switches and hidden controls follow the page', async () => {
  await page.getByText('Second choice').click()
  await page.locator('main').getByText('Second', { exact: true }).waitFor()
  await page.getByRole('radio', { name: 'Second choice' }).focus()
  await page.keyboard.press('ArrowUp')
  await page.locator('main').getByText('First', { exact: true }).waitFor()
  await page.getByText('Enable the frame below').click()
  await page.waitForFunction(() => document.querySelectorAll('input[type=radio]:disabled').length === 3)
  await page.getByText('Show the hidden field').click()
  await page.getByRole('textbox', { name: 'Hidden field' }).fill('there')
  assert.ok(await page.getByRole('button', { name: 'Disabled' }).isDisabled())
})

test('a message box keeps the focus until it is answered', async () => {
  await page.getByRole('button', { name: 'Ask' }).click()
  const box = page.getByRole('alertdialog').or(page.getByRole('dialog', { name: 'Delete entry' })).first()
  await box.waitFor()
  await picture(page, 'box')
  for (let i = 0; i < 5; ++i) {
    await page.keyboard.press('Tab')
    assert.ok(await page.evaluate(() => document.activeElement.closest('dialog, [role=alertdialog]') !== null))
  }
  await page.keyboard.press('Escape')
  await page.getByText('Kept').waitFor()
  await page.getByRole('button', { name: 'Ask' }).click()
  await box.waitFor()
  await page.keyboard.press('Enter')
  await page.getByText('Deleted').waitFor()
  await page.getByRole('button', { name: 'Fail', exact: true }).click()
  await page.getByText('<b>14</b>: no such file').waitFor()
  await picture(page, 'critical')
  await page.getByRole('button', { name: 'OK' }).click()
})

test('a dialog is used and closed, and its page goes on', async () => {
  writeFileSync(join(console.folder, 'lists', 'hosts.txt'), '')
  await page.getByRole('button', { name: 'Open a dialog' }).click()
  const dialog = page.getByRole('dialog', { name: 'A dialog' })
  await dialog.waitFor()
  await dialog.getByRole('option', { name: 'hosts.txt' }).click()
  await page.waitForFunction(() => [...document.querySelectorAll('dialog input')].some(i => i.value.endsWith('\\hosts.txt')))
  await picture(page, 'dialog')
  await dialog.getByRole('textbox', { name: 'File', exact: true }).fill('typed.example')
  await dialog.getByRole('button', { name: 'Apply' }).click()
  await page.getByText('The dialog was shown').waitFor()
  await page.getByRole('listbox', { name: 'A million entries' }).getByText('typed.example').waitFor()
})

test('long work shows its progress and leaves the page usable', async () => {
  await page.getByRole('button', { name: 'Work for two seconds' }).click()
  await page.getByText('Working').first().waitFor()
  await picture(page, 'busy')
  await page.getByText('Worked').waitFor()
})

test('a list of a million rows is there at once, scrolls and filters', async () => {
  const list = page.getByRole('listbox', { name: 'A million entries' })
  await list.scrollIntoViewIfNeeded()
  const timed = async action => {
    const begin = performance.now()
    await action()
    return Math.round(performance.now() - begin)
  }
  const filled = await timed(async () => {
    await page.getByRole('button', { name: 'Fill the list' }).click()
    await list.getByText('host0.example', { exact: true }).waitFor()
  })
  await list.focus()
  const toEnd = await timed(async () => {
    await page.keyboard.press('End')
    await list.getByText('host999999.example').waitFor()
  })
  await page.getByText('You typed: host999999.example').waitFor()
  const filter = page.getByRole('textbox', { name: 'Filter A million entries' })
  const filtered = await timed(async () => {
    await filter.fill('HOST77777')
    await page.getByText('11 of 1,000,000').waitFor()
  })
  await list.getByText('host777770.example').click()
  await page.getByText('You typed: host777770.example').waitFor()
  await picture(page, 'million')
  await filter.fill('')
  await page.getByText('1,000,000 entries').waitFor()
  const order = page.getByRole('combobox', { name: 'Order of A million entries' })
  const whole = list.locator('xpath=ancestor::*[contains(@class,"list-frame") and not(@data-filtering)]')
  const sort = async (choice, fifth) =>
    timed(async () => {
      await order.selectOption(choice)
      await whole.waitFor()
      await list.locator('.list-row').nth(4).getByText(fifth, { exact: true }).waitFor()
    })
  await list.press('Home')
  const sorted = await sort('text', 'host1000.example')
  const byDomain = await sort('domain', 'host1000.example')
  await sort('added', 'host4.example')
  const scroller = list.locator('xpath=ancestor-or-self::*[contains(@class,"list")][1]')
  const slowest = await scroller.evaluate(async element => {
    const target = [element, ...element.querySelectorAll('*')].find(e => e.scrollHeight > e.clientHeight + 50)
    let worst = 0
    let last = performance.now()
    for (let i = 0; i <= 60; ++i) {
      target.scrollTop = (target.scrollHeight * i) / 60
      await new Promise(requestAnimationFrame)
      worst = Math.max(worst, performance.now() - last)
      last = performance.now()
    }
    return Math.round(worst)
  })
  process.stdout.write(
    `# a million rows: filled and shown in ${filled} ms, at the end in ${toEnd} ms, ` +
      `filtered in ${filtered} ms (150 of them waiting for the typist), sorted in ${sorted} ms, by domain in ${byDomain} ms, slowest frame while scrolling ${slowest} ms\n`,
  )
})

test('the timer ticks without the browser', async () => {
  await page.getByText('Let the timer tick').click()
  await page.getByText('3 ticks').waitFor()
})

test('a lost connection comes back to the same page', async () => {
  browser.expected.push('WebSocket', 'ERR_CONNECTION_REFUSED', 'status of 401')
  await page.getByRole('textbox', { name: 'Entry' }).fill('kept')
  await page.getByText('You typed: kept').waitFor()
  await page.context().setOffline(true)
  await page.evaluate(() => new Promise(resolve => setTimeout(resolve, 300)))
  await page.context().setOffline(false)
  await page.reload()
  await page.getByText('You typed: kept').waitFor()
  const second = await page.context().newPage()
  await second.goto(`${console.address}#/allcontrols`)
  await second.getByRole('textbox', { name: 'Entry' }).fill('of another tab')
  await second.getByText('You typed: of another tab').waitFor()
  await page.getByText('You typed: kept').waitFor()
})
